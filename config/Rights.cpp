#include "config/Rights.h"

#include <QList>

#include <algorithm>
#include <array>

namespace {

struct RightsWord
{
    const char *word;
    Rights rights;
};

constexpr Rights noRights;
constexpr Rights allRights = Right::See | Right::Read | Right::Add | Right::Change | Right::Delete;

constexpr std::array rightsWords{
    RightsWord{ "none", noRights },        RightsWord{ "all", allRights },
    RightsWord{ "see", Right::See },       RightsWord{ "read", Right::Read },
    RightsWord{ "add", Right::Add },       RightsWord{ "change", Right::Change },
    RightsWord{ "delete", Right::Delete },
};

} // namespace

QByteArray rightsText(Rights rights)
{
    QByteArray text;
    for (const RightsWord &row : rightsWords) {
        if (row.rights == rights)
            return row.word;
        const bool isOne = row.rights != noRights && row.rights != allRights;
        if (isOne && (rights & row.rights) == row.rights)
            text += (text.isEmpty() ? "" : ", ") + QByteArray(row.word);
    }
    return text;
}

std::optional<Rights> rightsNamed(const QByteArray &text)
{
    Rights rights;
    for (const QByteArray &item : text.split(',')) {
        const QByteArray word = item.trimmed();
        const auto *row =
            std::find_if(rightsWords.begin(), rightsWords.end(),
                         [&word](const RightsWord &each) { return word == each.word; });
        if (row == rightsWords.end())
            return {};
        rights |= row->rights;
    }
    return rights;
}

#include "standard/http/AppFiles.h"

#include "standard/http/Html.h"
#include "standard/http/Request.h"

#include <QResource>
#include <QString>

#include <algorithm>
#include <array>

namespace standard {

namespace {

struct Form
{
    const char *encoding;
    const char *ending; ///< of the file's name
};

constexpr std::array<Form, 2> packedForms{ { { "br", ".br" }, { "gzip", ".gz" } } };

/// Its own, with nothing behind it, as browsers have it: who weighs them gets the file as it is.
bool accepts(const QByteArray &accepted, const char *encoding)
{
    const std::vector<QByteArray> items = listItems(accepted);
    return std::find(items.begin(), items.end(), QByteArray(encoding)) != items.end();
}

std::optional<QByteArray> resource(const QByteArray &name)
{
    const QResource found(QStringLiteral(":/app/") + QString::fromUtf8(name));
    if (!found.isValid() || !found.data() || name.contains('/'))
        return {};
    return QByteArray::fromRawData(reinterpret_cast<const char *>(found.data()), int(found.size()));
}

} // namespace

bool hasApp()
{
    return resource("head.html").has_value();
}

QByteArray appHead(const QByteArray &prefix, const QByteArray &nonce)
{
    const std::optional<QByteArray> head = resource("head.html");
    if (!head)
        return {};
    return QByteArray(*head)
        .replace("{nonce}", nonce)
        .replace("{app}", escaped(prefix) + '/' + appPath);
}

std::optional<AppFile> appFile(const QByteArray &name, const QByteArray &accepted)
{
    for (const Form &form : packedForms) {
        if (!accepts(accepted, form.encoding))
            continue;
        if (const std::optional<QByteArray> packed = resource(name + form.ending))
            return AppFile{ *packed, form.encoding };
    }
    const std::optional<QByteArray> plain = resource(name);
    return plain ? std::optional(AppFile{ *plain, {} }) : std::nullopt;
}

} // namespace standard

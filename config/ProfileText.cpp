#include "config/ProfileText.h"

#include "config/Profile.h"
#include "config/ProfileFile.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

constexpr qint64 maxTextBytes = qint64(64) * 1024;

constexpr const char *explanation =
    "# Values of this profile that its .cnf file has no place for.\n";

/// A key whose value is one word of a few; its number is the word's place among them.
struct TextKey
{
    const char *name;
    qint32 ProfileValues::*value;
    std::array<const char *, 3> words; ///< null behind the last
};

constexpr TextKey modeKey{ "mode", &ProfileValues::faceMode, { "classic", "auto", "standard" } };
constexpr std::array textKeys{
    modeKey,
    TextKey{ "sync", &ProfileValues::syncPolicy, { "none", "file", "folder" } },
    TextKey{ "propfind-infinity", &ProfileValues::deepListings, { "refuse", "answer", nullptr } },
    TextKey{ "strict", &ProfileValues::strict, { "no", "yes", nullptr } },
};

/// One line taken apart; `key` is empty in a comment or an empty line.
struct Line
{
    QByteArray key;
    QByteArray value;
    bool fits = true; ///< it is a comment, empty, or "key = value"
};

Line takeApart(const QByteArray &raw)
{
    const QByteArray line = raw.trimmed();
    if (line.isEmpty() || line.startsWith('#') || line.startsWith(';') || line.startsWith('['))
        return {};
    const int equals = line.indexOf('=');
    return { line.left(equals).trimmed(), line.mid(equals + 1).trimmed(), equals > 0 };
}

const TextKey *findKey(const QByteArray &name)
{
    const auto *found = std::find_if(textKeys.begin(), textKeys.end(),
                                     [&name](const TextKey &key) { return name == key.name; });
    return found == textKeys.end() ? nullptr : found;
}

bool takeWord(const TextKey &key, const QByteArray &word, ProfileValues *values)
{
    // A missing word is no word, but would equal an empty one.
    const auto *found = std::find_if(key.words.begin(), key.words.end(), [&word](const char *each) {
        return each != nullptr && word == each;
    });
    if (found == key.words.end())
        return false;
    values->*key.value = qint32(std::distance(key.words.begin(), found));
    return true;
}

QByteArray wordOf(const TextKey &key, const ProfileValues &values)
{
    return key.words.at(std::size_t(values.*key.value));
}

QByteArray lineOf(const TextKey &key, const ProfileValues &values)
{
    return QByteArray(key.name) + " = " + wordOf(key, values) + '\n';
}

/// Whether every line could be read; the values of those that could are taken over.
bool takeLines(const QByteArray &content, ProfileValues *values)
{
    if (content.contains('\0') || content.size() > maxTextBytes)
        return false;
    const QList<QByteArray> lines = content.split('\n');
    return std::all_of(lines.begin(), lines.end(), [values](const QByteArray &raw) {
        const Line line = takeApart(raw);
        const TextKey *key = findKey(line.key);
        return line.fits && (!key || takeWord(*key, line.value, values));
    });
}

void takeDefaults(ProfileValues *values)
{
    const ProfileValues defaults;
    for (const TextKey &key : textKeys)
        values->*key.value = defaults.*key.value;
}

/// The lines of `content` with the values put in; keys that are not there follow at the end unless
/// the default is meant.
QByteArray withValues(const QByteArray &content, const ProfileValues &values)
{
    QList<QByteArray> lines = content.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    QByteArray text;
    std::array<bool, textKeys.size()> written{};
    for (const QByteArray &raw : std::as_const(lines)) {
        const TextKey *key = findKey(takeApart(raw).key);
        text += key ? lineOf(*key, values) : raw + '\n';
        if (key)
            written.at(std::size_t(std::distance(textKeys.data(), key))) = true;
    }
    const ProfileValues defaults;
    for (std::size_t i = 0; i < textKeys.size(); ++i) {
        const TextKey &key = textKeys.at(i);
        if (!written.at(i) && values.*key.value != defaults.*key.value)
            text += lineOf(key, values);
    }
    return text;
}

} // namespace

QString textFileOf(const QString &profileFile)
{
    return profileFile.left(profileFile.lastIndexOf(QLatin1Char('.'))) + QLatin1String(".ini");
}

TextState readText(const QString &textFile, ProfileValues *values)
{
    takeDefaults(values);
    QFile file(textFile);
    if (!file.open(QIODevice::ReadOnly))
        return isMissing(textFile) ? TextState::Fine : TextState::Unreadable;
    if (takeLines(file.read(maxTextBytes + 1), values))
        return TextState::Fine;
    takeDefaults(values);
    return TextState::Damaged;
}

bool writeText(const QString &textFile, const ProfileValues &values)
{
    QFile file(textFile);
    QByteArray present;
    if (file.open(QIODevice::ReadOnly))
        present = file.readAll();
    else if (!isMissing(textFile))
        return false;
    const QByteArray text = withValues(present, values);
    if (text == present || text.isEmpty())
        return true;
    return writePrivate(textFile, present.isEmpty() ? explanation + text : text);
}

std::optional<FaceMode> faceModeOf(const QByteArray &name)
{
    ProfileValues values;
    return takeWord(modeKey, name, &values) ? std::optional(FaceMode(values.faceMode))
                                            : std::nullopt;
}

bool equalText(const ProfileValues &one, const ProfileValues &other)
{
    return std::all_of(textKeys.begin(), textKeys.end(),
                       [&](const TextKey &key) { return one.*key.value == other.*key.value; });
}

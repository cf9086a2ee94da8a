#include "config/ProfileText.h"

#include "config/Profile.h"
#include "config/ProfileFile.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace {

constexpr qint64 maxTextBytes = qint64(64) * 1024;

constexpr const char *explanation =
    "# Values of this profile that its .cnf file has no place for.\n";

using Words = std::array<const char *, 3>; ///< null behind the last

constexpr Words modes{ "classic", "auto", "standard" };
constexpr Words syncPolicies{ "none", "file", "folder" };
constexpr Words answers{ "refuse", "answer", nullptr };
constexpr Words switched{ "no", "yes", nullptr };

/// A key of the file. What it says of a value it also understands.
struct TextKey
{
    const char *name;
    bool (*take)(const QByteArray &text, ProfileValues *values); ///< false when it makes no sense
    QByteArray (*say)(const ProfileValues &values);
};

/// One word of a few; the value is its place among them.
template <qint32 ProfileValues::*value, const Words &words>
bool takeWord(const QByteArray &word, ProfileValues *values)
{
    // A missing word is no word, but would equal an empty one.
    const auto *found = std::find_if(words.begin(), words.end(), [&word](const char *each) {
        return each != nullptr && word == each;
    });
    if (found == words.end())
        return false;
    values->*value = qint32(std::distance(words.begin(), found));
    return true;
}

template <qint32 ProfileValues::*value, const Words &words>
QByteArray sayWord(const ProfileValues &values)
{
    return words.at(std::size_t(values.*value));
}

bool isAddress(const QByteArray &text)
{
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return ::inet_pton(AF_INET, text.constData(), address.data()) == 1
        || ::inet_pton(AF_INET6, text.constData(), address.data()) == 1;
}

bool takeProxies(const QByteArray &text, ProfileValues *values)
{
    QStringList addresses;
    for (const QByteArray &item : text.split(',')) {
        const QByteArray address = item.trimmed();
        if (!address.isEmpty() && !isAddress(address))
            return false;
        if (!address.isEmpty())
            addresses.append(QString::fromLatin1(address));
    }
    values->trustedProxies = addresses;
    return true;
}

QByteArray sayProxies(const ProfileValues &values)
{
    return values.trustedProxies.join(QLatin1String(", ")).toLatin1();
}

bool takePrefix(const QByteArray &text, ProfileValues *values)
{
    const std::optional<QByteArray> prefix = pathPrefixOf(text);
    values->pathPrefix = prefix.value_or(values->pathPrefix);
    return prefix.has_value();
}

QByteArray sayPrefix(const ProfileValues &values)
{
    return values.pathPrefix;
}

constexpr std::array textKeys{
    TextKey{ "mode", takeWord<&ProfileValues::faceMode, modes>,
             sayWord<&ProfileValues::faceMode, modes> },
    TextKey{ "sync", takeWord<&ProfileValues::syncPolicy, syncPolicies>,
             sayWord<&ProfileValues::syncPolicy, syncPolicies> },
    TextKey{ "propfind-infinity", takeWord<&ProfileValues::deepListings, answers>,
             sayWord<&ProfileValues::deepListings, answers> },
    TextKey{ "strict", takeWord<&ProfileValues::strict, switched>,
             sayWord<&ProfileValues::strict, switched> },
    TextKey{ "trusted-proxies", takeProxies, sayProxies },
    TextKey{ "path-prefix", takePrefix, sayPrefix },
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
    const auto equals = line.indexOf('=');
    return { line.left(equals).trimmed(), line.mid(equals + 1).trimmed(), equals > 0 };
}

const TextKey *findKey(const QByteArray &name)
{
    const auto *found = std::find_if(textKeys.begin(), textKeys.end(),
                                     [&name](const TextKey &key) { return name == key.name; });
    return found == textKeys.end() ? nullptr : found;
}

QByteArray lineOf(const TextKey &key, const ProfileValues &values)
{
    return QByteArray(key.name) + " = " + key.say(values) + '\n';
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
        return line.fits && (!key || key->take(line.value, values));
    });
}

void takeDefaults(ProfileValues *values)
{
    const ProfileValues defaults;
    for (const TextKey &key : textKeys)
        key.take(key.say(defaults), values);
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
        if (!written.at(i) && key.say(values) != key.say(defaults))
            text += lineOf(key, values);
    }
    return text;
}

} // namespace

QString textFileOf(const QString &profileFile)
{
    return profileFile + QLatin1String(".ini");
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
    return takeWord<&ProfileValues::faceMode, modes>(name, &values)
        ? std::optional(FaceMode(values.faceMode))
        : std::nullopt;
}

std::optional<QByteArray> pathPrefixOf(const QByteArray &text)
{
    QByteArray prefix = text;
    while (prefix.endsWith('/'))
        prefix.chop(1);
    const auto fits = [](char c) { return c > ' ' && c < '\x7f' && c != '?' && c != '#'; };
    const bool isPath = prefix.isEmpty() || prefix.startsWith('/');
    // "//" begins the name of another server.
    if (!isPath || prefix.contains("//") || !std::all_of(prefix.begin(), prefix.end(), fits))
        return {};
    return prefix;
}

bool equalText(const ProfileValues &one, const ProfileValues &other)
{
    return std::all_of(textKeys.begin(), textKeys.end(),
                       [&](const TextKey &key) { return key.say(one) == key.say(other); });
}

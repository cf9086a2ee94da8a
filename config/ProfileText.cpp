#include "config/ProfileText.h"

#include "config/Profile.h"
#include "config/ProfileFile.h"

#include <QFile>
#include <QUrl>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace {

constexpr qint64 maxTextBytes = qint64(1024) * 1024; ///< thousands of accounts

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
    bool protects = false; ///< the default may allow more
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

std::optional<QString> addressOf(const QByteArray &text)
{
    std::array<unsigned char, sizeof(in6_addr)> address{};
    const bool isAddress = ::inet_pton(AF_INET, text.constData(), address.data()) == 1
        || ::inet_pton(AF_INET6, text.constData(), address.data()) == 1;
    return isAddress ? std::optional(QString::fromLatin1(text)) : std::nullopt;
}

using ReadItem = std::optional<QString>(const QByteArray &text);

/// Several with commas between.
template <QStringList ProfileValues::*value, ReadItem readItem>
bool takeList(const QByteArray &text, ProfileValues *values)
{
    QStringList list;
    for (const QByteArray &part : text.split(',')) {
        if (part.trimmed().isEmpty())
            continue;
        const std::optional<QString> item = readItem(part.trimmed());
        if (!item)
            return false;
        list.append(*item);
    }
    values->*value = list;
    return true;
}

template <QStringList ProfileValues::*value> QByteArray sayList(const ProfileValues &values)
{
    return (values.*value).join(QLatin1String(", ")).toLatin1();
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

bool takeAnnouncedName(const QByteArray &text, ProfileValues *values)
{
    values->announcedName = QString::fromUtf8(text);
    return true;
}

/// A line by itself, whatever was typed.
QByteArray sayAnnouncedName(const ProfileValues &values)
{
    return values.announcedName.simplified().toUtf8();
}

constexpr auto asSwitched = "switches"; ///< the rights that the profile file's switches give
constexpr auto asEveryone = "everyone";

bool takeEveryone(const QByteArray &text, ProfileValues *values)
{
    values->everyone = rightsNamed(text);
    return values->everyone || text == asSwitched;
}

QByteArray sayEveryone(const ProfileValues &values)
{
    return values.everyone ? rightsText(*values.everyone) : QByteArray(asSwitched);
}

/// Of the login page. Without one, the profile file's own is meant.
bool takePassword(const QByteArray &text, ProfileValues *values)
{
    const QString hash = QString::fromUtf8(text);
    if (isPasswordHash(hash))
        values->password = hash;
    return text.isEmpty() || isPasswordHash(hash);
}

QByteArray sayPassword(const ProfileValues &values)
{
    return isPasswordHash(values.password) ? values.password.toUtf8() : QByteArray();
}

constexpr std::array textKeys{
    TextKey{ "mode", takeWord<&ProfileValues::faceMode, modes>,
             sayWord<&ProfileValues::faceMode, modes>, true },
    TextKey{ "sync", takeWord<&ProfileValues::syncPolicy, syncPolicies>,
             sayWord<&ProfileValues::syncPolicy, syncPolicies> },
    TextKey{ "propfind-infinity", takeWord<&ProfileValues::deepListings, answers>,
             sayWord<&ProfileValues::deepListings, answers> },
    TextKey{ "scratch-pad", takeWord<&ProfileValues::scratchPad, switched>,
             sayWord<&ProfileValues::scratchPad, switched> },
    TextKey{ "strict", takeWord<&ProfileValues::strict, switched>,
             sayWord<&ProfileValues::strict, switched>, true },
    TextKey{ "trusted-proxies", takeList<&ProfileValues::trustedProxies, addressOf>,
             sayList<&ProfileValues::trustedProxies>, true },
    TextKey{ "names", takeList<&ProfileValues::names, hostNameOf>, sayList<&ProfileValues::names>,
             true },
    TextKey{ "path-prefix", takePrefix, sayPrefix },
    TextKey{ "announce", takeWord<&ProfileValues::announced, switched>,
             sayWord<&ProfileValues::announced, switched> },
    TextKey{ "announce-name", takeAnnouncedName, sayAnnouncedName },
    TextKey{ "everyone", takeEveryone, sayEveryone, true },
    TextKey{ "login-password", takePassword, sayPassword, true },
};

/// A key with a line for each account, whose name follows. What it says it also understands.
struct AccountKey
{
    const char *prefix;
    bool (*take)(const QString &name, const QByteArray &text, ProfileValues *values);
    QMap<QString, QByteArray> (*say)(const ProfileValues &values); ///< by name
    void (*clear)(ProfileValues *values);
};

/// "see, read; /home"
bool takeAccount(const QString &name, const QByteArray &text, ProfileValues *values)
{
    const auto end = text.indexOf(';');
    const QByteArray rights = (end < 0 ? text : text.left(end)).trimmed();
    const QByteArray home = end < 0 ? QByteArray() : text.mid(end + 1).trimmed();
    AccountRights account{ rightsNamed(rights), QByteArray::fromPercentEncoding(home) };
    const bool isUnderstood = account.rights || rights == asEveryone;
    values->accountRights.insert(name, account);
    return isUnderstood && (end < 0 || home.startsWith('/'));
}

/// Readable as it stands, but without anything that ends a name or a value.
QByteArray encodedName(const QByteArray &name)
{
    QByteArray encoded;
    for (const char c : name)
        encoded += c < 0 ? QByteArray(1, c) : QByteArray(1, c).toPercentEncoding("/@+");
    return encoded;
}

QMap<QString, QByteArray> sayAccounts(const ProfileValues &values)
{
    QMap<QString, QByteArray> said;
    for (auto at = values.accountRights.begin(); at != values.accountRights.end(); ++at) {
        const QByteArray rights = at->rights ? rightsText(*at->rights) : QByteArray(asEveryone);
        const QByteArray home = at->home.isEmpty() ? at->home : "; " + encodedName(at->home);
        said.insert(at.key(), rights + home);
    }
    return said;
}

void clearAccounts(ProfileValues *values)
{
    values->accountRights.clear();
}

/// Of an account that there is from then on.
bool takeHash(const QString &name, const QByteArray &text, ProfileValues *values)
{
    const QString hash = QString::fromUtf8(text);
    if (!isPasswordHash(hash) || name.contains(QLatin1Char(':')))
        return false;
    QStringList &users = values->users;
    users.erase(
        std::remove_if(users.begin(), users.end(),
                       [&name](const QString &account) { return accountName(account) == name; }),
        users.end());
    users.append(name + QLatin1Char(':') + hash);
    return true;
}

QMap<QString, QByteArray> sayHashes(const ProfileValues &values)
{
    QMap<QString, QByteArray> said;
    for (const QString &account : values.users) {
        if (isPasswordHash(accountPassword(account)))
            said.insert(accountName(account), accountPassword(account).toUtf8());
    }
    return said;
}

void clearHashes(ProfileValues *values)
{
    QStringList &users = values->users;
    users.erase(std::remove_if(users.begin(), users.end(),
                               [](const QString &account) {
                                   return isPasswordHash(accountPassword(account));
                               }),
                users.end());
}

constexpr std::array accountKeys{
    AccountKey{ "account.", takeAccount, sayAccounts, clearAccounts },
    AccountKey{ "password.", takeHash, sayHashes, clearHashes },
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

const AccountKey *findAccountKey(const QByteArray &name)
{
    const auto *found =
        std::find_if(accountKeys.begin(), accountKeys.end(),
                     [&name](const AccountKey &key) { return name.startsWith(key.prefix); });
    return found == accountKeys.end() ? nullptr : found;
}

QString accountNamed(const QByteArray &key, const AccountKey &kind)
{
    return QString::fromUtf8(QByteArray::fromPercentEncoding(key.mid(int(qstrlen(kind.prefix)))));
}

QByteArray keyOf(const AccountKey &kind, const QString &account)
{
    return kind.prefix + encodedName(account.toUtf8());
}

/// Whether the line can be read; the value is taken over then.
bool takeLine(const QByteArray &raw, ProfileValues *values)
{
    const Line line = takeApart(raw);
    if (const TextKey *key = findKey(line.key))
        return line.fits && key->take(line.value, values);
    const AccountKey *kind = findAccountKey(line.key);
    if (!kind)
        return line.fits;
    const QString name = accountNamed(line.key, *kind);
    return line.fits && !name.isEmpty() && kind->take(name, line.value, values);
}

/// Whether every line could be read; the values of those that could are taken over.
bool takeLines(const QByteArray &content, ProfileValues *values)
{
    if (content.contains('\0') || content.size() > maxTextBytes)
        return false;
    const QList<QByteArray> lines = content.split('\n');
    return std::all_of(lines.begin(), lines.end(),
                       [values](const QByteArray &raw) { return takeLine(raw, values); });
}

/// Whether the file, which can't be used, was to protect something. A damaged line may have lost
/// what ends its key.
bool speaksOfProtection(const QByteArray &content)
{
    const auto protects = [](const QByteArray &raw) {
        const QByteArray line = raw.trimmed();
        return findAccountKey(line)
            || std::any_of(textKeys.begin(), textKeys.end(), [&line](const TextKey &key) {
                   return key.protects && line.startsWith(key.name);
               });
    };
    const QList<QByteArray> lines = content.split('\n');
    return std::any_of(lines.begin(), lines.end(), protects);
}

void takeDefaults(ProfileValues *values)
{
    const ProfileValues defaults;
    for (const TextKey &key : textKeys)
        key.take(key.say(defaults), values);
    for (const AccountKey &kind : accountKeys)
        kind.clear(values);
}

struct Saying
{
    QByteArray key;
    QByteArray value;

    bool operator==(const Saying &other) const { return key == other.key && value == other.value; }
};

/// All that can be said of the values.
std::vector<Saying> sayingsOf(const ProfileValues &values)
{
    std::vector<Saying> all;
    all.reserve(textKeys.size());
    for (const TextKey &key : textKeys)
        all.push_back({ key.name, key.say(values) });
    for (const AccountKey &kind : accountKeys) {
        const QMap<QString, QByteArray> said = kind.say(values);
        for (auto at = said.begin(); at != said.end(); ++at)
            all.push_back({ keyOf(kind, at.key()), at.value() });
    }
    return all;
}

/// The line with what is said for its key now; nothing when that is of an account that is gone.
QByteArray renewed(const QByteArray &raw, const std::vector<Saying> &sayings)
{
    QByteArray key = takeApart(raw).key;
    const AccountKey *kind = findAccountKey(key);
    if (kind)
        key = keyOf(*kind, accountNamed(key, *kind));
    else if (!findKey(key))
        return raw + '\n';
    const auto said = std::find_if(sayings.begin(), sayings.end(),
                                   [&key](const Saying &each) { return each.key == key; });
    return said == sayings.end() ? QByteArray() : key + " = " + said->value + '\n';
}

/// The lines of `content` with the values put in; keys that are not there follow at the end unless
/// the default is meant.
QByteArray withValues(const QByteArray &content, const ProfileValues &values)
{
    const std::vector<Saying> sayings = sayingsOf(values);
    const std::vector<Saying> usual = sayingsOf(ProfileValues());
    QList<QByteArray> lines = content.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    QByteArray text;
    for (const QByteArray &raw : std::as_const(lines))
        text += renewed(raw, sayings);
    for (const Saying &each : sayings) {
        const QByteArray line = each.key + " = " + each.value + '\n';
        const bool isUsual = std::find(usual.begin(), usual.end(), each) != usual.end();
        if (!isUsual && !('\n' + text).contains('\n' + line))
            text += line;
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
    const QByteArray content = file.read(maxTextBytes + 1);
    if (takeLines(content, values))
        return TextState::Fine;
    takeDefaults(values);
    return speaksOfProtection(content) ? TextState::Unreadable : TextState::Damaged;
}

bool copyText(const QString &from, const QString &to)
{
    QFile source(textFileOf(from));
    const QString target = textFileOf(to);
    if (isMissing(source.fileName()))
        return isMissing(target) || QFile::remove(target);
    return source.open(QIODevice::ReadOnly) && writePrivate(target, source.readAll());
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

std::optional<QString> hostNameOf(const QByteArray &text)
{
    QUrl url;
    url.setHost(QString::fromUtf8(text), QUrl::StrictMode);
    const QString host = url.host(QUrl::FullyEncoded);
    return host.isEmpty() ? std::nullopt : std::optional(host);
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
    return sayingsOf(one) == sayingsOf(other);
}

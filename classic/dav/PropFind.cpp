#include "classic/dav/PropFind.h"

#include "classic/dav/Listing.h"
#include "config/Profile.h"

#include <QDir>
#include <QHostAddress>
#include <QUrl>

#include <array>
#include <cstdio>
#include <ctime>

namespace {

constexpr int usualEntrySize = 400; ///< bytes of one response element
constexpr int largestReserve = 1 << 30;

// English in every locale (RFC 9110, section 5.6.7).
constexpr std::array<const char *, 7> dayNames{ "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
constexpr std::array<const char *, 12> monthNames{ "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };

/// Local time under the label "GMT": clients of this server compare it with what they saw before.
QByteArray lastModified(qint64 seconds)
{
    const auto time = std::time_t(seconds);
    std::tm local = {};
    ::localtime_r(&time, &local);
    std::array<char, 64> text;
    const int size = std::snprintf(text.data(), text.size(), "%s, %d %s %04d %02d:%02d:%02d GMT",
                                   dayNames.at(size_t(local.tm_wday)), local.tm_mday,
                                   monthNames.at(size_t(local.tm_mon)), local.tm_year + 1900,
                                   local.tm_hour, local.tm_min, local.tm_sec);
    return { text.data(), size };
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

QString plainAddress(const QHostAddress &address)
{
    bool isIPv4 = false;
    const quint32 ipv4 = address.toIPv4Address(&isIPv4);
    return isIPv4 ? QHostAddress(ipv4).toString() : address.toString();
}

/// Where `path` of a request stands in the share, without needless slashes and dots: "" or "/a/b".
QString relativePath(const QString &path)
{
    const QString clean = QDir::cleanPath(QLatin1Char('/') + path);
    return clean == QLatin1String("/") ? QString() : clean;
}

QString withoutLastSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

} // namespace

/// What stands between the values of a response element.
struct PropFind::Markup
{
    /// `prefix` is a letter and ":", or empty.
    explicit Markup(const QByteArray &prefix);

    QByteArray root, toHref, toDate, fileToSize, folderToSize, toEnd, rootEnd;
};

PropFind::Markup::Markup(const QByteArray &prefix)
{
    const auto prefixed = [&prefix](QByteArray text) { return text.replace('~', prefix); };
    const QByteArray declared = prefix.isEmpty() ? QByteArray() : ':' + prefix.left(1);

    root = prefixed("~multistatus xmlns") + declared + "=\"DAV:\">";
    toHref = prefixed("<~response><~href>");
    toDate = prefixed("</~href><~propstat><~prop><~getlastmodified>");
    fileToSize = prefixed("</~getlastmodified><~getcontentlength>");
    folderToSize = prefixed("</~getlastmodified><~resourcetype><~collection/></~resourcetype>"
                            "<~getcontentlength>");
    toEnd = prefixed("</~getcontentlength></~prop><~status>HTTP/1.1 200 OK</~status>"
                     "</~propstat></~response>");
    rootEnd = prefixed("</~multistatus>");
}

PropFind::PropFind(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

PropFind::~PropFind() = default;

void PropFind::reply(const QFileInfo &shared, Profile *profile)
{
    const QString path = requestedPath();
    const QString target = pathIn(shared, path);
    // Clients ask Depth 1 of files too, which must not make them folders.
    const std::optional<Resource> found = resourceAt(withoutLastSlashes(target));
    if (!found)
        return sendHeader(DavStatus::notFound, 0);

    foldersShown = profile->showsFolders();
    markup = std::make_unique<Markup>(requestedPrefix());
    init(body);
    body += markup->root;
    const QByteArray href = baseUrl() + hrefPath(relativePath(path));
    if (found->isFolder && path.endsWith(QLatin1Char('/')))
        addDir(target, href);
    else
        addEntry(*found, relativePath(path).isEmpty() ? href + '/' : href);
    body += markup->rootEnd;
    sendDocument(body);
    body.clear();
}

/// The path with or without a "/" at its end: with one, a folder's entries are meant.
QString PropFind::requestedPath() const
{
    QString path = request->path;
    if (request->depth.isEmpty())
        return path;
    const bool endsWithSlash = path.endsWith(QLatin1Char('/'));
    if (!request->depth.contains('0'))
        return endsWithSlash ? path : path + QLatin1Char('/');
    if (endsWithSlash)
        path.chop(1);
    return path;
}

/// The namespace prefix of the request body's root element, a letter and ":"; some clients only
/// understand their own. Empty when there is none.
QByteArray PropFind::requestedPrefix()
{
    const QByteArray asked = request->channel.read(request->contentLength);
    const int element = int(asked.indexOf("propfind "));
    if (element < 2 || asked.at(element - 1) != ':')
        return {};
    // Anything but a letter could write into the document.
    const char letter = asked.at(element - 2);
    return isLetter(letter) ? QByteArray(1, letter) + ':' : QByteArray();
}

QByteArray PropFind::baseUrl() const
{
    const Channel &channel = request->channel;
    QUrl url;
    url.setScheme(channel.isEncrypted() ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(plainAddress(channel.localAddress()));
    url.setPort(channel.localPort());
    return url.toEncoded();
}

/// One element for each entry; `href` is the folder's.
void PropFind::addDir(const QString &folder, const QByteArray &href)
{
    const std::vector<Resource> entries = listFolder(folder, foldersShown);
    const auto expected = qint64(entries.size() + 1) * (usualEntrySize + href.size());
    body.reserve(int(qMin<qint64>(expected, largestReserve)));
    const QByteArray base = href + '/';
    for (const Resource &entry : entries)
        addEntry(entry, base + hrefPath(entry.name));
}

void PropFind::addEntry(const Resource &entry, const QByteArray &href)
{
    body += markup->toHref;
    body += href;
    body += markup->toDate;
    body += lastModified(entry.modified);
    body += entry.isFolder ? markup->folderToSize : markup->fileToSize;
    body += QByteArray::number(entry.size);
    body += markup->toEnd;
}

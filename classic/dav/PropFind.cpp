#include "classic/dav/PropFind.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/ListingCache.h"
#include "files/Path.h"
#include "files/Share.h"
#include "net/Socket.h"
#include "server/Url.h"

#include <QFile>

#include <utility>

namespace {

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

QHostAddress plainAddress(const QHostAddress &address)
{
    bool isIPv4 = false;
    const quint32 ipv4 = address.toIPv4Address(&isIPv4);
    return isIPv4 ? QHostAddress(ipv4) : address;
}

QString withoutLastSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

ListingShape shapeFor(const Profile &profile)
{
    ListingShape shape;
    shape.foldersFirst = false;
    shape.folders = profile.showsFolders();
    return shape;
}

} // namespace

PropFind::PropFind(Exchange &current)
    : DocumentReply(current)
{
}

PropFind::~PropFind()
{
    stopListing();
}

void PropFind::reply()
{
    const QString path = askedPath();
    // Clients ask Depth 1 of files too, which must not make them folders.
    const EntryFacts found = facts(nativePath(withoutLastSlashes(path)));
    if (!found.folder && !found.file)
        return answer(Status::notFound);

    markup = ResourceMarkup(askedPrefix());
    const QByteArray relative = cleanPath(path.toUtf8());
    const QByteArray href = baseUrl() + (relative.isEmpty() ? "" : "/") + hrefPath(relative);
    if (found.folder && path.endsWith(QLatin1Char('/')))
        return whenInTurn(
            [this, native = nativePath(path), href] { listFolder(native, href + '/'); });
    sendResource(
        { relative.isEmpty() ? href + '/' : href, found.size, found.seconds, found.folder });
}

/// The path with or without a "/" at its end: with one, a folder's entries are meant.
QString PropFind::askedPath() const
{
    QString path = request.path;
    if (request.depth.isEmpty())
        return path;
    const bool endsWithSlash = path.endsWith(QLatin1Char('/'));
    if (!request.depth.contains('0'))
        return endsWithSlash ? path : path + QLatin1Char('/');
    if (endsWithSlash)
        path.chop(1);
    return path;
}

/// The namespace prefix of the request body's root element, a letter and ":"; some clients only
/// understand their own. Empty when there is none.
QByteArray PropFind::askedPrefix() const
{
    const QByteArray asked = channel.request().readBuffered(request.contentLength);
    const int element = int(asked.indexOf("propfind "));
    if (element < 2 || asked.at(element - 1) != ':')
        return {};
    // Anything but a letter could write into the document.
    const char letter = asked.at(element - 2);
    return isLetter(letter) ? QByteArray(1, letter) + ':' : QByteArray();
}

QByteArray PropFind::baseUrl() const
{
    const Socket &socket = channel.connection();
    const QHostAddress address = plainAddress(socket.localAddress());
    const QString url = serverUrl(socket.isEncrypted(), address, socket.localPort());
    // Of a link-local address, before the name of its link (RFC 6874).
    return url.toLatin1().replace('%', "%25");
}

void PropFind::listFolder(const QByteArray &path, const QByteArray &href)
{
    std::optional<FolderReader> reader = share() ? share()->openFolder(path) : std::nullopt;
    if (!reader)
        return sendResources(0, {});
    waiting = std::make_unique<QObject>();
    exchange.service.setup.listings->list(
        std::move(*reader), shapeFor(*exchange.service.profile), {}, waiting.get(),
        [this, href](const Listing &listing) { sendEntries(listing, href); });
}

void PropFind::sendResource(const Resource &resource)
{
    sendResources(1, [this, resource](QByteArray &text, qint64) { markup.append(text, resource); });
}

/// One element for each entry; `href` is the folder's with its last "/".
void PropFind::sendEntries(const Listing &listing, const QByteArray &href)
{
    if (!listing)
        return exchange.channel.abort();
    sendResources(listing->count(), [this, listing, href](QByteArray &text, qint64 index) {
        const FolderListing::Entry entry = listing->at(index);
        const QByteArray name = QFile::decodeName(entry.name).toUtf8();
        markup.append(text,
                      { href + hrefPath(name), entry.size, entry.modifiedSeconds(), entry.folder });
    });
}

void PropFind::sendResources(qint64 count,
                             std::function<void(QByteArray &text, qint64 index)> append)
{
    sendDocument({ declaration + markup.rootStart(), count, std::move(append), markup.rootEnd() });
}

void PropFind::stopListing()
{
    waiting.reset();
}

void PropFind::replyEnded()
{
    stopListing();
    DocumentReply::replyEnded();
}

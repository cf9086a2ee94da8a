#include "classic/listing/ClientListing.h"

#include "classic/pages/ListedEntry.h"
#include "classic/pages/SharedPreviews.h"
#include "config/Profile.h"
#include "files/ListingCache.h"
#include "files/Path.h"
#include "files/Share.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int longPath = 2048; ///< bytes; from here on the system may not know a path one day

/// A line break in a name would read as the start of another record.
bool fitsOneLine(const QByteArray &name)
{
    return !name.contains('\n') && !name.contains('\r');
}

void addLine(QByteArray &lines, const QByteArray &text = {})
{
    lines.append(text).append("\r\n");
}

QByteArray timeText(qint64 modified)
{
    return QByteArray::number(clientTime(modified));
}

QByteArray nativeOf(const QByteArray &utf8Path)
{
    return nativePath(QString::fromUtf8(utf8Path));
}

std::pair<dev_t, ino_t> identityOf(const EntryFacts &facts)
{
    return { facts.device, facts.inode };
}

EntryFacts factsOf(const FolderListing::Entry &entry)
{
    EntryFacts facts;
    facts.folder = entry.folder;
    facts.size = entry.size;
    facts.seconds = entry.modifiedSeconds();
    facts.nanoseconds = qint32((entry.modified - facts.seconds * 1000) * 1000000);
    return facts;
}

} // namespace

ClientListing::ClientListing(Exchange &current)
    : Responder(current)
    , slices(current, [this](const Turn &turn) { return walk(turn); })
{
}

void ClientListing::reply()
{
    stop();
    Profile &profile = *exchange.service.profile;
    const QString previews = request.field("i");
    if (!previews.isEmpty()) {
        profile.showImages = previews == QLatin1String("1") ? Qt::Checked : Qt::Unchecked;
        return channel.write({}, true);
    }
    filter.init(request.fields());
    thumbnails = profile.showsThumbnails();
    showHidden = exchange.session()->showHidden;
    share = exchange.service.share;
    root = exchange.service.shared.absoluteFilePath().toUtf8();
    list();
}

/// Clients show entries in the order they come.
ListingShape ClientListing::shape() const
{
    ListingShape shape;
    shape.order = ListingShape::Order::ByNameInAnyCase;
    shape.foldersFirst = false;
    shape.hidden = showHidden;
    shape.links = true;
    return shape;
}

void ClientListing::list()
{
    const QByteArray path = request.path.toUtf8();
    const EntryFacts facts = share ? share->facts(nativePath(request.path)) : EntryFacts();
    if (!facts.exists)
        return finish();

    if (path.endsWith('/')) {
        top = path;
        return slices.start();
    }
    FolderListing::Entry file;
    file.name = nativePath(QFileInfo(request.path).fileName());
    file.size = facts.size;
    file.modified = facts.modified();
    file.folder = facts.folder;
    sendFile(path, file);
    channel.write(std::exchange(buffer, {}), true);
}

void ClientListing::sendFile(const QByteArray &path, const FolderListing::Entry &file)
{
    addLine(buffer, QByteArray::number(file.size));
    addLine(buffer, timeText(file.modified));
    if (thumbnails)
        addPicture(path, file);
    addLine(buffer);
}

void ClientListing::sendEntry(const FolderListing::Entry &entry)
{
    const QByteArray path = prefix + QFile::decodeName(entry.name).toUtf8();
    if (entry.folder)
        return sendFolder(path + '/', entry);
    addLine(buffer, path);
    sendFile(path, entry);
}

void ClientListing::sendFolder(const QByteArray &path, const FolderListing::Entry &folder)
{
    if (filter.isRecursive())
        return enter(path, folder.name);
    addLine(buffer, path);
    addLine(buffer, timeText(folder.modified));
}

void ClientListing::addPicture(const QByteArray &path, const FolderListing::Entry &file)
{
    const ListedEntry entry(file);
    Previews::State preview = Previews::State::Failed;
    if (entry.needsPreview()) {
        const QByteArray native = nativeOf(path);
        preview = askForPreview(exchange.service.setup.previews, share, native,
                                share->facts(native), entry.extension(), Urgency::Listed);
    }
    entry.addReference(&buffer, path, root, preview);
}

bool ClientListing::isWanted(const FolderListing::Entry &entry) const
{
    return fitsOneLine(entry.name) && filter.accept(QFile::decodeName(entry.name), factsOf(entry));
}

/// Goes down into a folder. Not when it can't be read, or is being listed already: links may lead
/// back, and entering it again would never end.
void ClientListing::enter(const QByteArray &path, const QByteArray &name)
{
    std::optional<FolderReader> reader = open(path, name);
    if (!reader)
        return;
    const Identity identity = identityOf(openFacts(reader->descriptor()));
    if (!onPath.insert(identity).second)
        return;
    prefix = path;
    // One at a time is enough: the way up is found from below.
    FileDescriptor kept(path.size() > longPath ? ::dup(reader->descriptor()) : -1);
    if (!levels.empty())
        levels.back().folder.reset();
    levels.push_back({ int(prefix.size()), identity, std::move(kept), {} });
    slices.pause();
    reading = std::make_unique<QObject>();
    exchange.service.setup.listings->list(std::move(*reader), shape(), {}, reading.get(),
                                          [this](const ListingCache::Listing &listing) {
                                              if (!listing)
                                                  return exchange.channel.abort();
                                              levels.back().listing = listing;
                                              slices.resume();
                                          });
}

/// By its path, or by its `name` in the current folder where that is too long.
std::optional<FolderReader> ClientListing::open(const QByteArray &path,
                                                const QByteArray &name) const
{
    std::optional<FolderReader> reader = share->openFolder(nativeOf(path));
    if (reader || errno != ENAMETOOLONG || levels.empty() || !levels.back().folder.isOpen())
        return reader;
    const FolderReader parent = share->reader(FileDescriptor(::dup(levels.back().folder.get())));
    FileDescriptor folder = parent.openFolder(name.constData());
    if (!folder.isOpen())
        return {};
    return share->reader(std::move(folder));
}

void ClientListing::leave()
{
    const FileDescriptor left = std::move(levels.back().folder);
    onPath.erase(levels.back().identity);
    levels.pop_back();
    if (levels.empty())
        return;
    prefix.truncate(levels.back().prefixSize);
    if (left.isOpen() && prefix.size() > longPath)
        climb(left);
}

/// Opens the folder above `left` anew, if that is still where it lies.
void ClientListing::climb(const FileDescriptor &left)
{
    Level &level = levels.back();
    level.folder.reset(::openat(left.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (identityOf(entryFacts(level.folder.get())) != level.identity)
        level.folder.reset();
}

void ClientListing::step()
{
    Level &level = levels.back();
    if (level.next == level.listing->count())
        return leave();
    const FolderListing::Entry entry = level.listing->at(level.next++);
    if (isWanted(entry))
        sendEntry(entry);
}

bool ClientListing::walk(const Turn &turn)
{
    if (!top.isEmpty())
        enter(std::exchange(top, {}), {});
    while (!levels.empty() && !isReading() && buffer.size() < Slices::pieceBytes && !turn.isOver())
        step();
    if (levels.empty()) {
        finish();
        return false;
    }
    if (!buffer.isEmpty())
        channel.write(std::exchange(buffer, {}), false);
    return true;
}

void ClientListing::finish()
{
    addLine(buffer);
    channel.write(std::exchange(buffer, {}), true);
}

void ClientListing::stop()
{
    slices.stop();
    reading.reset();
    levels.clear();
    onPath.clear();
    share.reset();
    top.clear();
    buffer.clear();
}

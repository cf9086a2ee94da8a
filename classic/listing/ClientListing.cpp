#include "classic/listing/ClientListing.h"

#include "classic/pages/ListedEntry.h"
#include "classic/pages/SharedPreviews.h"
#include "config/Profile.h"
#include "files/DiskJob.h"
#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Share.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// What a folder's listing holds: files, folders, and links to anything that exists.
bool isListed(const EntryFacts &entry)
{
    return (entry.file || entry.folder || (entry.link && entry.exists)) && entry.readable;
}

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

} // namespace

/// Frees the names of folders. With many of them that takes too long for the event loop.
class ClientListing::Discard final : public DiskJob
{
public:
    explicit Discard(std::vector<Level> unwanted)
        : levels(std::move(unwanted))
    {
    }

    bool run(const Budget &until) override
    {
        if (until.mayBlock())
            levels.clear();
        return until.mayBlock();
    }

private:
    std::vector<Level> levels;
};

bool ClientListing::ComesLater::operator()(const Found &left, const Found &right) const
{
    const int order = left.key.compare(right.key);
    return order > 0 || (order == 0 && left.name > right.name);
}

ClientListing::ClientListing(Exchange &current)
    : Responder(current)
    , slices(current.channel, [this](const Slices::Turn &turn) { return walk(turn); })
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

void ClientListing::list()
{
    const QByteArray path = request.path.toUtf8();
    const EntryFacts facts = share ? share->facts(nativePath(request.path)) : EntryFacts();
    if (!facts.exists)
        return finish();

    if (path.endsWith('/')) {
        if (!enter(path))
            return finish();
        return slices.start();
    }
    const QString name = QFileInfo(request.path).fileName();
    sendFile(path, { {}, name, facts.size, facts.modified(), facts.folder });
    channel.write(std::exchange(buffer, {}), true);
}

void ClientListing::sendFile(const QByteArray &path, const Found &file)
{
    addLine(buffer, QByteArray::number(file.size));
    addLine(buffer, timeText(file.modified));
    if (thumbnails)
        addPicture(path, file);
    addLine(buffer);
}

void ClientListing::sendEntry(const Found &entry)
{
    const QByteArray path = prefix + entry.name.toUtf8();
    if (entry.folder)
        return sendFolder(path + '/', entry);
    addLine(buffer, path);
    sendFile(path, entry);
}

void ClientListing::sendFolder(const QByteArray &path, const Found &folder)
{
    if (filter.isRecursive()) {
        enter(path);
        return;
    }
    addLine(buffer, path);
    addLine(buffer, timeText(folder.modified));
}

void ClientListing::addPicture(const QByteArray &path, const Found &file)
{
    const ListedEntry entry({ nativePath(file.name), file.size, file.modified, file.folder });
    Previews::State preview = Previews::State::Failed;
    if (entry.needsPreview()) {
        const QByteArray native = nativeOf(path);
        preview = askForPreview(exchange.service.setup.previews, share, native,
                                share->facts(native), entry.extension(), Urgency::Listed);
    }
    entry.addReference(&buffer, path, root, preview);
}

/// Goes down into a folder. False when it can't be read, or is being listed already: links may
/// lead back, and entering it again would never end.
bool ClientListing::enter(const QByteArray &path)
{
    std::optional<FolderReader> reader = share->openFolder(nativeOf(path));
    if (!reader)
        return false;
    const EntryFacts facts = openFacts(reader->descriptor());
    const Identity identity(facts.device, facts.inode);
    if (!onPath.insert(identity).second)
        return false;
    prefix = path;
    levels.push_back({ int(prefix.size()), identity, {} });
    unread.emplace(std::move(*reader));
    return true;
}

void ClientListing::leave()
{
    onPath.erase(levels.back().identity);
    levels.pop_back();
    if (!levels.empty())
        prefix.truncate(levels.back().prefixSize);
}

void ClientListing::readEntry()
{
    FolderReader::Item item;
    if (!unread->next(item))
        return unread.reset();

    const QByteArray nativeName(item.name);
    if (!isVisible(nativeName))
        return;
    const EntryFacts facts = unread->facts(item);
    const QString name = QFile::decodeName(nativeName);
    if (isListed(facts) && filter.accept(name, facts))
        levels.back().entries.push(
            { name.toLower(), name, facts.size, facts.modified(), facts.folder });
}

bool ClientListing::isVisible(const QByteArray &nativeName) const
{
    const bool hidden = nativeName.startsWith('.');
    return (showHidden || !hidden) && fitsOneLine(nativeName) && isSpellable(nativeName);
}

void ClientListing::step()
{
    if (unread)
        return readEntry();
    Level &level = levels.back();
    if (level.entries.empty())
        return leave();

    const Found entry = level.entries.top();
    level.entries.pop();
    sendEntry(entry);
}

bool ClientListing::walk(const Slices::Turn &turn)
{
    while (!levels.empty() && buffer.size() < Slices::pieceBytes && !turn.isOver())
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
    if (!levels.empty())
        exchange.service.setup.disk->run(std::make_shared<Discard>(std::move(levels)), nullptr, {});
    levels.clear();
    onPath.clear();
    unread.reset();
    share.reset();
    buffer.clear();
}

#include "files/TreeRemoval.h"

#include "files/Entry.h"

#include <cerrno>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::size_t maxOpen = 64;
constexpr std::size_t maxFolders = 16; ///< names of folders kept a level
constexpr int batchEntries = 512;
constexpr int maxReadings = 32; ///< of a folder; each takes the half at least where it helps
constexpr int noLinkFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool removeFile(int folder, const char *name)
{
    return ::unlinkat(folder, name, 0) == 0;
}

bool removeFolder(int folder, const char *name)
{
    return ::unlinkat(folder, name, AT_REMOVEDIR) == 0;
}

} // namespace

TreeRemoval::TreeRemoval(Place top)
    : place(std::move(top))
    , meant(::openat(place.folder.get(), place.name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC))
{
}

bool TreeRemoval::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!std::exchange(begun, true))
        begin();
    while (!levels.empty()) {
        if (until.isUsedUp())
            return until.isCancelled();
        step();
    }
    return true;
}

void TreeRemoval::begin()
{
    if (!place.isValid() || place.holdsHidden || !standsThere())
        return;
    const char *name = place.name.constData();
    const int folder = place.folder.get();
    whole = removeFile(folder, name) || errno == ENOENT;
    if (!whole)
        enter(place.name);
}

/// Others may have removed it since, or put something in its place.
bool TreeRemoval::standsThere()
{
    const FileDescriptor now(
        ::openat(place.folder.get(), place.name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    whole = !now.isOpen() && errno == ENOENT;
    const bool same = isSameEntry(openFacts(meant.get()), openFacts(now.get()));
    changed = !whole && !same;
    meant.reset();
    return same;
}

void TreeRemoval::step()
{
    Level &level = levels.back();
    if (!level.folders.empty()) {
        const QByteArray name = std::move(level.folders.back());
        level.folders.pop_back();
        return enter(name);
    }
    if (level.atEnd)
        return leave();
    readBatch(level);
}

/// Goes down into a folder. What isn't one any more, or can't be read, is removed as it is.
void TreeRemoval::enter(const QByteArray &name)
{
    const int parent = levels.empty() ? place.folder.get() : levels.back().folder.get();
    Level level;
    level.name = name;
    level.folder.reset(::openat(parent, name.constData(), noLinkFlags));
    const EntryFacts facts = openFacts(level.folder.get());
    if (!facts.exists) {
        const bool removed =
            removeFile(parent, name.constData()) || removeFolder(parent, name.constData());
        if (!removed)
            noteFailure(name);
        return count(removed);
    }
    if (place.hidden && place.hidden->has(facts))
        return count(false);
    level.device = facts.device;
    level.inode = facts.inode;
    levels.push_back(std::move(level));
    limitOpen();
}

/// The levels far above are opened again on the way back.
void TreeRemoval::limitOpen()
{
    if (levels.size() > maxOpen)
        levels[levels.size() - 1 - maxOpen].folder.reset();
}

void TreeRemoval::readBatch(Level &level)
{
    FolderReader reader(std::move(level.folder));
    reader.seek(level.position);
    FolderReader::Item item;
    int read = 0;
    bool goesOn = true;
    while (goesOn && read < batchEntries) {
        goesOn = reader.next(item);
        if (goesOn && !sort(level, reader, item))
            break;
        ++read;
        if (goesOn)
            level.position = item.next;
    }
    level.atEnd = !goesOn;
    level.folder = reader.takeDescriptor();
}

/// Removes an entry, or keeps a folder's name for later. False when there is no room for one more.
bool TreeRemoval::sort(Level &level, const FolderReader &reader, const FolderReader::Item &item)
{
    const bool mayBeFile = item.type != DT_DIR;
    if (mayBeFile && removeFile(reader.descriptor(), item.name)) {
        count(true);
        return true;
    }
    const bool isFolder =
        item.type == DT_DIR || errno == EISDIR || (item.type == DT_UNKNOWN && errno == EPERM);
    if (!isFolder) {
        noteFailure(item.name);
        count(false);
        return true;
    }
    if (level.folders.size() == maxFolders)
        return false;
    level.folders.emplace_back(item.name);
    return true;
}

void TreeRemoval::leave()
{
    Level level = std::move(levels.back());
    levels.pop_back();
    const int parent = parentOf(level);
    if (parent < 0) { // moved away meanwhile: what is above can't be found from here
        levels.clear();
        return;
    }
    const bool removed = removeFolder(parent, level.name.constData());
    if (!removed && errno == ENOTEMPTY && readAgain(level)) {
        levels.push_back(std::move(level));
        return;
    }
    if (!removed && !level.failed)
        noteFailure(level.name);
    count(removed);
}

/// The open folder above. One that was closed is opened again from below, if it is still the same.
int TreeRemoval::parentOf(const Level &level)
{
    if (levels.empty())
        return place.folder.get();
    Level &above = levels.back();
    if (above.folder.isOpen())
        return above.folder.get();
    above.folder.reset(::openat(level.folder.get(), "..", noLinkFlags));
    const EntryFacts facts = openFacts(above.folder.get());
    if (!facts.exists || facts.device != above.device || facts.inode != above.inode)
        above.folder.reset();
    return above.folder.get();
}

/// Some file systems skip entries when others are removed while they are read. Others give a file
/// that is open a new name each time it is removed: that has an end.
bool TreeRemoval::readAgain(Level &level)
{
    if (level.failed || !level.progressed || level.readings == maxReadings)
        return false;
    ++level.readings;
    level.position = 0;
    level.atEnd = level.progressed = false;
    return true;
}

/// Of an entry of the current folder, by its path. The top folder has none below itself.
void TreeRemoval::noteFailure(const QByteArray &name)
{
    if (levels.empty() || failed.size() == maxToldFailures)
        return;
    QByteArray path;
    for (std::size_t i = 1; i < levels.size(); ++i)
        path += levels[i].name + '/';
    failed.push_back(path + name);
}

void TreeRemoval::count(bool done)
{
    if (levels.empty()) {
        whole = done;
        return;
    }
    removedCount += done ? 1 : 0;
    levels.back().progressed |= done;
    levels.back().failed |= !done;
}

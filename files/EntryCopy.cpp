#include "files/EntryCopy.h"

#include "files/Attributes.h"
#include "files/HiddenUploads.h"
#include "files/Path.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t maxDepth = 100; ///< each level keeps two files open, of some copies at once
constexpr mode_t whileCopied = 0700;

std::optional<OpenFile> openIn(const FolderReader &folder, const char *name)
{
    OpenFile file{ folder.openFile(name), {} };
    file.facts = openFacts(file.descriptor.get());
    if (!file.facts.file)
        return {};
    return file;
}

} // namespace

EntryCopy::EntryCopy(std::shared_ptr<const Share> shared, QByteArray from, Place to, Depth howDeep)
    : share(std::move(shared))
    , top(std::move(from))
    , target(std::move(to))
    , depth(howDeep)
{
}

bool EntryCopy::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!std::exchange(begun, true))
        begin();
    while ((copy || !levels.empty()) && !isHopeless()) {
        if (until.isUsedUp())
            return until.isCancelled();
        step(until);
    }
    if (list && failed.empty() && !list->rewind())
        fail({}, DiskError::NoSpace);
    abandon();
    return true;
}

void EntryCopy::abandon()
{
    copy.reset();
    sweep.reset();
    levels.clear();
}

int EntryCopy::sync() const
{
    const bool isTree = openFacts(held.get()).folder;
    const bool isDone = (isTree ? ::syncfs(held.get()) : ::fdatasync(held.get())) == 0;
    // Some file systems know no such call; they write when they like.
    return !isDone && errno != EINVAL && errno != ENOSYS ? errno : 0;
}

void EntryCopy::begin()
{
    if (list && !list->open(beside(target, target.name)))
        return fail({}, diskError(errno));
    const Place source = share->place(top);
    const bool listed = note(source.folder.get(), source.name);
    if (std::optional<OpenFile> file = share->openFile(top))
        return startFile(std::move(*file), std::move(target), {});
    std::optional<FolderReader> folder = share->openFolder(top);
    if (!folder)
        return fail({}, diskError(errno));
    enter(std::move(*folder), target, {}, listed);
}

void EntryCopy::step(const Budget &until)
{
    if (copy) {
        if (copy->run(until))
            finishFile();
        return;
    }
    if (sweep) {
        if (sweep->run(until))
            finishSweep();
        return;
    }
    FolderReader::Item item;
    if (depth == Depth::Alone)
        return leave();
    if (levels.back().source.next(item))
        return take(item);
    if (const int error = levels.back().source.error())
        fail(levels.back().path, diskError(error));
    leave();
}

/// An entry of the current folder.
void EntryCopy::take(const FolderReader::Item &item)
{
    const Level &level = levels.back();
    const QByteArray name = item.name;
    const QByteArray path = joinedPath(level.path, name);
    const EntryFacts facts = level.source.facts(item);
    if (isHiddenUpload(item.name) || (!facts.file && !facts.folder))
        return leaveOut(item, path);
    const bool listed = note(level.source.descriptor(), name);
    Place to{ duplicate(level.copy.get()), name };
    if (facts.file) {
        std::optional<OpenFile> file = openIn(level.source, item.name);
        return file ? startFile(std::move(*file), std::move(to), path)
                    : fail(path, diskError(errno));
    }
    FileDescriptor folder = level.source.openFolder(item.name);
    if (!folder.isOpen() || levels.size() == maxDepth || isInside(facts))
        return fail(path, DiskError::Failed);
    enter(share->reader(std::move(folder)), to, path, listed);
}

/// Neither file nor folder, hidden, being received, or gone by now.
void EntryCopy::leaveOut(const FolderReader::Item &item, const QByteArray &path)
{
    const int folder = levels.back().source.descriptor();
    if (!list || !EntryStamp::of(folder, item.name))
        return;
    if (!isHiddenUpload(item.name))
        return fail(path, DiskError::Failed);
    current = path;
    sweep = std::make_unique<LeftoverSweep>(
        Place{ duplicate(folder), item.name, false, target.hidden }, hiddenUploadLife);
}

/// What was not given up stays, and with it the folder.
void EntryCopy::finishSweep()
{
    sweep.reset();
    const QByteArray name = current.mid(current.lastIndexOf('/') + 1);
    if (EntryStamp::of(levels.back().source.descriptor(), name.constData()))
        fail(current, DiskError::Locked);
}

/// Before it is copied: what changes from now on is not in the copy. Whether it is a folder, of
/// which all that it holds is noted as well.
bool EntryCopy::note(int folder, const QByteArray &name)
{
    if (!list || (!levels.empty() && !levels.back().listed))
        return false;
    const std::optional<EntryStamp> stamp = EntryStamp::of(folder, name.constData());
    if (!stamp)
        return false;
    const bool isFolder = S_ISDIR(stamp->kind);
    list->add(
        { isFolder ? CopiedEntries::Kind::Folder : CopiedEntries::Kind::Entry, name, *stamp });
    return isFolder;
}

/// Through a link a folder may hold itself, or the copy.
bool EntryCopy::isInside(const EntryFacts &folder) const
{
    return isSameEntry(folder, made)
        || std::any_of(levels.begin(), levels.end(),
                       [&folder](const Level &level) { return isSameEntry(level.facts, folder); });
}

void EntryCopy::startFile(OpenFile file, Place to, const QByteArray &path)
{
    current = path;
    copy = std::make_unique<FileCopy>(std::move(file), std::move(to), FileCopy::Existing::Kept);
    copy->keepProperties();
}

void EntryCopy::finishFile()
{
    const DiskError error = copy->error();
    if (levels.empty())
        held = copy->takeMade();
    copy.reset();
    if (error != DiskError::None)
        fail(current, error);
}

void EntryCopy::enter(FolderReader source, const Place &to, const QByteArray &path, bool listed)
{
    const int folder = to.folder.get();
    const char *name = to.name.constData();
    FileDescriptor opened;
    if (::mkdirat(folder, name, whileCopied) == 0)
        opened.reset(::openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!opened.isOpen())
        return fail(path, diskError(errno));
    const EntryFacts facts = openFacts(source.descriptor());
    if (levels.empty()) {
        made = openFacts(opened.get());
        held = duplicate(opened.get());
        ::flock(held.get(), LOCK_SH | LOCK_NB);
    }
    levels.push_back({ path, std::move(source), std::move(opened), facts, listed });
}

/// What was made in it has changed the folder's time.
void EntryCopy::leave()
{
    const Level &level = levels.back();
    ::fchmod(level.copy.get(), level.facts.mode & permissionBits);
    copyProperties(level.source.descriptor(), level.copy.get());
    if (level.listed)
        list->add({});
    levels.pop_back();
}

void EntryCopy::fail(const QByteArray &path, DiskError error)
{
    full = full || error == DiskError::NoSpace;
    if (failed.size() < maxToldFailures)
        failed.push_back({ path, error });
}

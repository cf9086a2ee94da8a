#include "files/LeftoverSweep.h"

#include "files/Entry.h"
#include "files/HiddenUploads.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

using SweepClock = std::chrono::steady_clock;

constexpr auto leastPause = 1h;
constexpr std::size_t maxRemembered = 4096;

/// Of the whole process, like the folders themselves.
struct Swept
{
    std::mutex mutex; ///< guards `folders`
    std::map<std::pair<dev_t, ino_t>, SweepClock::time_point> folders;
};

/// Whether it is time to sweep a folder; if so it counts as swept.
bool isDue(const EntryFacts &folder)
{
    static Swept swept;
    const auto now = SweepClock::now();
    const std::lock_guard<std::mutex> lock(swept.mutex);
    if (swept.folders.size() == maxRemembered)
        swept.folders.clear();
    const auto [at, isNew] = swept.folders.emplace(std::pair(folder.device, folder.inode), now);
    if (!isNew && now - at->second < leastPause)
        return false;
    at->second = now;
    return true;
}

/// Opens what is in nobody's use. For writing where it can be: NFS locks nothing else so.
FileDescriptor openUnused(int folder, const char *name)
{
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor open(::openat(folder, name, O_RDWR | flags));
    if (!open.isOpen())
        open.reset(::openat(folder, name, O_RDONLY | flags));
    if (::flock(open.get(), LOCK_EX | LOCK_NB) != 0)
        open.reset();
    return open;
}

} // namespace

LeftoverSweep::LeftoverSweep(Place anyBeside, std::chrono::seconds leastAge)
    : place(std::move(anyBeside))
    , age(leastAge)
{
}

std::shared_ptr<LeftoverSweep> LeftoverSweep::ifDue(const Place &anyBeside)
{
    if (!isDue(entryFacts(anyBeside.folder.get())))
        return {};
    return std::make_shared<LeftoverSweep>(beside(anyBeside, anyBeside.name), hiddenUploadLife);
}

bool LeftoverSweep::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!std::exchange(begun, true))
        begin();
    while (reader || removal) {
        if (until.isUsedUp())
            return until.isCancelled();
        step(until);
    }
    return true;
}

void LeftoverSweep::abandon()
{
    reader.reset();
    removal.reset();
}

void LeftoverSweep::begin()
{
    FileDescriptor folder(::openat(place.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        reader.emplace(std::move(folder));
}

void LeftoverSweep::step(const Budget &until)
{
    FolderReader::Item item;
    if (removal) {
        if (removal->run(until))
            removal.reset();
    } else if (!reader->next(item)) {
        reader.reset();
    } else if (isHiddenUpload(item.name)) {
        take(item);
    }
}

/// Being renamed changes what is told as the last change of anything; a file tells when it got its
/// last byte.
void LeftoverSweep::take(const FolderReader::Item &item)
{
    struct stat own = {};
    if (::fstatat(reader->descriptor(), item.name, &own, AT_SYMLINK_NOFOLLOW) != 0)
        return;
    const bool isFile = S_ISREG(own.st_mode);
    const bool isFolder = S_ISDIR(own.st_mode);
    const qint64 changed = isFile ? own.st_mtime : std::max(own.st_mtime, own.st_ctime);
    if (changed > ::time(nullptr) - age.count())
        return;
    // Nobody has links and the like in use under such a name.
    const FileDescriptor unused =
        isFile || isFolder ? openUnused(reader->descriptor(), item.name) : FileDescriptor();
    if ((isFile || isFolder) && !unused.isOpen())
        return;
    if (isFolder)
        removal = std::make_unique<TreeRemoval>(beside(place, item.name));
    else
        ::unlinkat(reader->descriptor(), item.name, 0);
}

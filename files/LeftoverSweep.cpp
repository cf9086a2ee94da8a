#include "files/LeftoverSweep.h"

#include "files/Entry.h"
#include "files/FolderReader.h"
#include "files/HiddenUploads.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>

namespace {

/// A copy that is being made is locked.
bool isAbandoned(int folder, const char *name)
{
    const FileDescriptor open(
        ::openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return open.isOpen() && ::flock(open.get(), LOCK_EX | LOCK_NB) == 0;
}

} // namespace

LeftoverSweep::LeftoverSweep(Place anyBeside, std::chrono::seconds leastAge)
    : place(std::move(anyBeside))
    , age(leastAge)
{
}

bool LeftoverSweep::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!std::exchange(looked, true))
        look();
    while (removal || !names.empty()) {
        if (!removal) {
            removal = std::make_unique<TreeRemoval>(beside(place, names.back()));
            names.pop_back();
        }
        if (!removal->run(until))
            return false;
        removal.reset();
        if (until.isUsedUp())
            return names.empty() || until.isCancelled();
    }
    return true;
}

/// Being renamed changes what is told as the last change of anything.
void LeftoverSweep::look()
{
    FileDescriptor open(::openat(place.folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!open.isOpen())
        return;
    const qint64 latest = ::time(nullptr) - age.count();
    FolderReader reader(std::move(open));
    FolderReader::Item item;
    while (reader.next(item)) {
        if (!isHiddenUpload(item.name))
            continue;
        const EntryFacts facts = reader.facts(item);
        const bool stale =
            facts.folder && !facts.link && std::max(facts.seconds, facts.changeSeconds) <= latest;
        if (stale && isAbandoned(reader.descriptor(), item.name))
            names.emplace_back(item.name);
    }
}

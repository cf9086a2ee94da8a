#include "standard/web/UploadTaker.h"

#include "files/DiskWorker.h"
#include "files/FolderMaking.h"
#include "files/HiddenUploads.h"
#include "files/Path.h"
#include "files/Share.h"
#include "files/UploadFile.h"
#include "standard/http/Reserved.h"

#include <utility>

#include <fcntl.h>

namespace standard {

std::vector<Change> UploadTaker::Spot::changes() const
{
    return { { path, Change::Extent::Resource, !replaces } };
}

/// Through a link it would stand in another folder than what was received.
UploadTaker::Spot UploadTaker::spotAt(const QByteArray &path, bool mayReplace) const
{
    const QByteArray at = pathToAdd(path);
    const EntryFacts found = factsAt(at);
    const bool isFree = !found.link && (!found.exists || (found.file && mayReplace));
    return { at, found.exists, isFree, found.exists && mayReplace ? Right::Change : Right::Add };
}

bool UploadTaker::isKeptName(const QByteArray &path) const
{
    return namesHiddenUpload(path) || isReserved(exchange.access().home, path);
}

std::vector<QByteArray> UploadTaker::missingAround(const QByteArray &path) const
{
    std::vector<QByteArray> missing;
    QByteArray folder = parentPath(path);
    // What lies above the visitor's home stands, though nothing of it can be named.
    const auto home = exchange.access().home.size();
    const QByteArray standing = longestPart(folder, [this, home](const QByteArray &part) {
        return part.size() <= home || factsAt(part).exists;
    });
    for (; folder.size() > standing.size(); folder = parentPath(folder))
        missing.push_back(folder);
    return missing;
}

void UploadTaker::makeFolder(const QByteArray &folder, std::function<void(int error)> next)
{
    const auto job = std::make_shared<FolderMaking>(exchange.share(), folder);
    disk().runAside(job, this, [this, job, next = std::move(next)] {
        if (!isOver())
            next(job->error());
    });
}

bool UploadTaker::hasRoom(const QByteArray &folder, qint64 bytes) const
{
    const FileDescriptor open = share()->open(folder, O_PATH | O_DIRECTORY);
    const qint64 promised = uploads().promised(entryFacts(open.get()).device);
    return diskHolds(open.get(), quint64(bytes) + quint64(promised));
}

DiskError UploadTaker::beginAt(const QByteArray &path)
{
    Place place = share()->place(path);
    return replaces ? upload->replace(std::move(place)) : upload->create(std::move(place));
}

} // namespace standard

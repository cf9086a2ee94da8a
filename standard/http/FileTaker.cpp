#include "standard/http/FileTaker.h"

#include "files/DiskWorker.h"
#include "files/UploadFile.h"

#include <QPointer>

#include <utility>

#include <sys/statvfs.h>

namespace standard {

FileTaker::FileTaker(Exchange &current)
    : ResourceHandler(current)
{
}

FileTaker::~FileTaker() = default;

void FileTaker::keep(bool evenUnasked)
{
    const std::shared_ptr<UploadFile> received = std::exchange(upload, {});
    DiskWorker *worker = &disk();
    worker->run(received, worker,
                [worker, received, evenUnasked, self = QPointer<FileTaker>(this)] {
                    if (self && !self->isOver())
                        return self->takeName(received);
                    if (!evenUnasked || received->error() != DiskError::None)
                        received->discard();
                    worker->run(received, nullptr, {});
                });
}

/// A lock may have been granted since it was asked for; a file that has changed, the job finds
/// itself.
void FileTaker::takeName(const std::shared_ptr<UploadFile> &received)
{
    if (received->error() != DiskError::None)
        return taken(*received);
    DiskWorker *worker = &disk();
    if (mayBeKept(*received))
        return worker->run(received, worker,
                           [received, settle = whenKept(), self = QPointer<FileTaker>(this)] {
                               if (settle && received->error() == DiskError::None)
                                   settle();
                               if (self && !self->isOver())
                                   self->taken(*received);
                           });
    received->discard();
    worker->run(received, nullptr, {});
}

/// Freeing a large file takes the disk a while.
void FileTaker::discard()
{
    const std::shared_ptr<UploadFile> received = std::exchange(upload, {});
    if (!received)
        return;
    received->discard();
    disk().run(received, nullptr, {});
}

bool FileTaker::diskHolds(int folder, quint64 bytes)
{
    struct statvfs disk = {};
    if (::fstatvfs(folder, &disk) != 0 || disk.f_blocks == 0)
        return true;
    return bytes / disk.f_frsize < disk.f_bavail;
}

std::optional<qint64> wantedTime(const QByteArray &text)
{
    bool good = false;
    const double seconds = text.toDouble(&good);
    constexpr double latest = 253402300799; // the year 9999
    if (!good || !(seconds >= 0 && seconds <= latest)) // "nan" is a number to the toolkit
        return {};
    return qint64(seconds);
}

} // namespace standard

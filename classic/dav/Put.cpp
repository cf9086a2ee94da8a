#include "classic/dav/Put.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/Reservation.h"
#include "files/Share.h"
#include "server/Uploads.h"

#include <utility>

namespace {

constexpr auto probingClient = "ezdavplugin";
constexpr int probeSize = 1; ///< bytes

const char *keptStatus(DiskError error)
{
    switch (error) {
    case DiskError::None:
        return Status::created;
    case DiskError::Exists:
        return Status::preconditionFailed;
    case DiskError::Missing: // its folder is, by now
        return Status::locked;
    default:
        return Status::insufficientStorage;
    }
}

} // namespace

Put::Put(Exchange &current)
    : Dav(current)
{
}

Put::~Put() = default;

void Put::reply()
{
    if (!exchange.service.profile->allowsUpload())
        return answer("423 Read only");
    const QByteArray path = requestedPath();
    const bool exists = facts(path).exists;
    const bool taken = exists || Reservation::isTaken(place(path));
    if (taken && !isFrom(Request::desktopClient))
        return answer(Status::preconditionFailed);
    if (isProbe())
        return answer(Status::created);
    receive(path, exists);
}

/// Whether this request says so: what a program may do, nobody else may on the same connection.
bool Put::isFrom(const char *program) const
{
    return request.bringsUserAgent && request.userAgent == program;
}

/// A plug-in tries a share out by writing one byte, and expects no file of it.
bool Put::isProbe() const
{
    return request.contentLength == probeSize && isFrom(probingClient);
}

void Put::receive(const QByteArray &path, bool exists)
{
    if (!share() || path.endsWith('/'))
        return answer(Status::locked);
    upload = newUpload(*exchange.service.profile);
    const DiskError error =
        exists ? upload->replace(share()->target(path)) : upload->create(place(path));
    if (error == DiskError::None)
        return channel.receive({ BodyIntake::Target::File, request.contentLength, upload.get() });
    upload.reset();
    answer(Status::locked);
}

void Put::uploadEnded(SaveResult result)
{
    const std::shared_ptr<UploadFile> received = std::exchange(upload, {});
    if (result == Saved)
        return keep(received);
    received->discard();
    disk().run(received, nullptr, {});
    answer(result == WriteFailed ? Status::insufficientStorage : "500 Network read error");
}

void Put::keep(const std::shared_ptr<UploadFile> &received)
{
    disk().run(received, this, [this, received] { answer(keptStatus(received->error())); });
}

#include "files/Reservation.h"

#include "files/Place.h"

#include <cerrno>
#include <mutex>
#include <set>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

/// Of the whole process, like the files themselves: several served items may share a folder.
struct Names
{
    std::mutex mutex; ///< guards `taken`
    std::set<std::tuple<dev_t, ino_t, QByteArray>> taken;
};

Names &names()
{
    static Names all;
    return all;
}

} // namespace

bool isInUse(const Place &place)
{
    if (Reservation::isTaken(place))
        return true;
    const FileDescriptor file(::openat(place.folder.get(), place.name.constData(),
                                       O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return file.isOpen() && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

std::optional<Reservation> Reservation::take(const Place &place)
{
    std::optional<Key> key = keyOf(place);
    if (!key)
        return {};
    const std::lock_guard<std::mutex> lock(names().mutex);
    if (!names().taken.insert(*key).second)
        return {};
    return Reservation(std::move(*key));
}

bool Reservation::isTaken(const Place &place)
{
    const std::optional<Key> key = keyOf(place);
    const std::lock_guard<std::mutex> lock(names().mutex);
    return key && names().taken.count(*key) != 0;
}

Reservation::Reservation(Reservation &&other) noexcept
    : key(std::exchange(other.key, std::nullopt))
{
}

Reservation &Reservation::operator=(Reservation &&other) noexcept
{
    if (this != &other) {
        give();
        key = std::exchange(other.key, std::nullopt);
    }
    return *this;
}

Reservation::~Reservation()
{
    give();
}

std::optional<Reservation::Key> Reservation::keyOf(const Place &place)
{
    struct stat status = {};
    if (!place.isValid() || ::fstat(place.folder.get(), &status) != 0)
        return {};
    return Key(status.st_dev, status.st_ino, place.name);
}

void Reservation::give()
{
    if (!key)
        return;
    const std::lock_guard<std::mutex> lock(names().mutex);
    names().taken.erase(*key);
    key.reset();
}

#pragma once

#include <QByteArray>

#include <optional>
#include <tuple>

#include <sys/types.h>

struct Place;

/// Whether the file at a place is being received or written to, here or by another program that
/// locks it.
bool isInUse(const Place &place);

/// A name in a folder that belongs to one upload of this process until the object goes. The folder
/// counts as what it is, so it may be renamed meanwhile and be reached by several paths. Movable,
/// for any thread.
class Reservation
{
public:
    /// None when somebody has it already, or there is no such place.
    static std::optional<Reservation> take(const Place &place);

    static bool isTaken(const Place &place);

    Reservation(Reservation &&other) noexcept;
    Reservation &operator=(Reservation &&other) noexcept;
    Reservation(const Reservation &) = delete;
    Reservation &operator=(const Reservation &) = delete;
    ~Reservation();

private:
    using Key = std::tuple<dev_t, ino_t, QByteArray>;

    explicit Reservation(Key reserved)
        : key(std::move(reserved))
    {
    }

    static std::optional<Key> keyOf(const Place &place);
    void give();

    std::optional<Key> key; ///< empty after a move
};

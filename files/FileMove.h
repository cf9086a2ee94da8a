#pragma once

#include "files/FileCopy.h"
#include "files/Place.h"
#include "files/Reservation.h"

#include <optional>

/// Moves one regular file to another file system, where nothing may have its name: a copy, and the
/// source goes once that is on the disk. A source that is in use (being received, locked) or has
/// changed meanwhile stays, and the copy goes.
class FileMove final : public DiskJob
{
public:
    /// `source` is what `from` names, through a link as well: then the link goes.
    FileMove(OpenFile source, Place from, Place to);

    bool run(const Budget &until) override;

    /// How it ended: `Locked` and `Changed` tell of the source.
    DiskError error() const { return result; }

private:
    bool hold();
    DiskError removeSource();

    Place origin;
    std::optional<Reservation> reservation; ///< of the source's name
    FileCopy copy;
    DiskError result = DiskError::None;
};

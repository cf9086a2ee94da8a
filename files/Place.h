#pragma once

#include "files/FileDescriptor.h"
#include "files/HiddenFolders.h"

#include <QByteArray>

#include <memory>

/// Where an entry stands or is to stand: an open folder and a name in it. What makes, renames or
/// removes entries takes one. Given by `Share`, movable; the folder may be a mere place (`O_PATH`).
struct Place
{
    FileDescriptor folder;
    QByteArray name; ///< one segment, as on disk
    bool holdsHidden = false; ///< a hidden folder lies below: not to be removed or renamed
    std::shared_ptr<const HiddenFolders> hidden = {};

    bool isValid() const { return folder.isOpen() && !name.isEmpty(); }
};

/// Another name in the same folder.
inline Place beside(const Place &place, const QByteArray &name)
{
    return { duplicate(place.folder.get()), name, false, place.hidden };
}

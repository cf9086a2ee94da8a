#pragma once

#include <QByteArray>
#include <QtGlobal>

class FolderListing;

namespace standard {

constexpr qint64 maxPageEntries = 5000; ///< a longer page is of use to nobody

/// A page that lists a folder for people, without scripts. `path` is that of the folder in the
/// share.
QByteArray folderPage(const QByteArray &path, const FolderListing &listing);

} // namespace standard

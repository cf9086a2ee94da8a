#pragma once

#include <QByteArray>
#include <QtGlobal>

class FolderListing;

namespace standard {

constexpr qint64 maxPageEntries = 5000; ///< a longer page is of use to nobody

/// A page that lists a folder for people, without scripts. `path` is what they call the folder;
/// `forms` stand at the top, as HTML.
QByteArray folderPage(const QByteArray &path, const FolderListing &listing,
                      const QByteArray &forms);

} // namespace standard

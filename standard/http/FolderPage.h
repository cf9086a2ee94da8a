#pragma once

#include <QByteArray>
#include <QtGlobal>

class FolderListing;

namespace standard {

constexpr qint64 maxPageEntries = 5000; ///< a longer page is of use to nobody

/// In the query of a folder's URL: asks for an archive of it.
constexpr auto archiveQuery = "archive=zip";

/// A page that lists a folder for people, without scripts. `path` is what they call the folder;
/// `top` stands above the list, as HTML.
QByteArray folderPage(const QByteArray &path, const FolderListing &listing, const QByteArray &top);

/// For the top of the page.
QByteArray archiveLink();

} // namespace standard

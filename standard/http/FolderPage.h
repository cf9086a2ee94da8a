#pragma once

#include <QByteArray>
#include <QtGlobal>

class FolderListing;

namespace standard {

constexpr qint64 maxPageEntries = 5000; ///< a longer page is of use to nobody

/// In the query of a folder's URL: asks for an archive of it.
constexpr auto archiveQuery = "archive=zip";

/// A text that all who see the whole share hand each other, where the profile has such a pad.
constexpr auto padPath = ".quillon/pad";

/// A page that lists a folder for people, without scripts. The web application begins with what it
/// says, and takes it over.
struct FolderPage
{
    QByteArray path; ///< of the folder, as people call it
    QByteArray head; ///< HTML that ends the page's head
    QByteArray top; ///< HTML above the list
    const FolderListing *listing; ///< null: nothing is told of what is there

    QByteArray html() const;

    /// For its top: leads to an archive of it; by which a file is added, see `FormUpload`.
    static QByteArray archiveLink();
    static QByteArray uploadForm();

    /// The same: leads to the pad. `prefix` as that of `appHead`.
    static QByteArray padLink(const QByteArray &prefix);
};

} // namespace standard

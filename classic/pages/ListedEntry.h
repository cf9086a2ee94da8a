#pragma once

#include "classic/pages/ShortDates.h"
#include "files/FolderListing.h"
#include "files/Previews.h"

#include <QByteArray>

/// What the cells of one page have in common. Lives while the page is made.
struct CellFrame
{
    QByteArray urlFolder; ///< URL path of the listed folder, percent-encoded, ending in "/"
    QByteArray previewFolder; ///< the same for the previews of its pictures
    QByteArray folderText; ///< what folders are called on pages without pictures
    bool withCheckbox = false; ///< entries can be selected for deletion
    ShortDates *dates = nullptr; ///< borrowed
};

/// One entry of a listing as browsers and the desktop client see it. A value.
class ListedEntry
{
public:
    explicit ListedEntry(FolderListing::Entry listed);

    /// Whether it is too large to be shown itself; its preview is shown once that is made.
    bool needsPreview() const { return picture == Picture::Large; }

    /// That of its name, in lower case.
    QByteArray extension() const { return ext; }

    /// Appends the table cell of a page with pictures. `preview` counts for what needs one.
    void addCell(QByteArray *page, const CellFrame &frame, Previews::State preview) const;

    /// Appends the table cell of a page without pictures.
    void addPlainCell(QByteArray *page, const CellFrame &frame) const;

    /// Appends the picture reference for the desktop client: nothing, the picture's own URL path,
    /// "/_t/" and the path of the file whose preview is ready, or "/_t/" alone while it is being
    /// made. `urlPath` is that of the entry, UTF-8; `root` the path of the share's root.
    void addReference(QByteArray *out, const QByteArray &urlPath, const QByteArray &root,
                      Previews::State preview) const;

private:
    enum class Picture {
        None,
        Small, ///< is shown itself
        Large ///< is shown by its preview
    };

    void addCellStart(QByteArray *page, const CellFrame &frame) const;
    void addFileFacts(QByteArray *page, const CellFrame &frame) const;
    void addImage(QByteArray *page, const CellFrame &frame, Previews::State preview) const;

    const FolderListing::Entry entry;
    const QByteArray name; ///< UTF-8
    QByteArray ext; ///< empty when there is none
    Picture picture = Picture::None;
};

#pragma once

#include "classic/pages/ListedEntry.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// Renders one folder as the page that browsers get, bit by bit, so that a page of any size takes
/// little at once. Made for one reply; gives the same bytes whenever it is gone through.
class ListingPage
{
public:
    struct Options
    {
        QString urlPath; ///< as it was asked for, decoded
        QString diskFolder; ///< absolute path of the folder
        QByteArray message; ///< shown once
        int sortMode = 0; ///< see `SessionData`
        int itemsPerPage = 1; ///< as it was set; less than 1 counts as 1
        qint64 pageIndex = 0;
        bool pictures = false; ///< or a page without icons and previews
        bool deleting = false;
        bool uploading = false;
    };

    /// `entries` covers what the page shows.
    ListingPage(std::shared_ptr<const FolderListing> entries, Options pageOptions);

    /// How many entries it shows.
    qint64 shownCount() const { return end - first; }

    /// One of those, from 0 on.
    FolderListing::Entry shown(qint64 index) const { return listing->at(first + index); }

    /// Says how far the preview of a shown entry is; without it, none can be made. To be called
    /// before the page is gone through.
    void setPreview(qint64 index, Previews::State state);

    /// Whether all previews of the page are there, or given up.
    bool isComplete() const { return complete; }

    /// Appends the next bit; false when it was the last one.
    bool addNext(QByteArray *out);

    /// Goes back to the start.
    void restart();

private:
    Q_DISABLE_COPY_MOVE(ListingPage)

    enum class Part { Top, Entries, Middle, Links, Bottom };

    void addTop();
    void addUpLink();
    void addSortForm();
    void addActionForm();
    void addDeleteForm();
    void addEntry();
    void addMiddle();
    void addPageLink();
    void goOn(qint64 steps, Part then);
    qint64 pageCount() const;

    const std::shared_ptr<const FolderListing> listing;
    const Options options;
    const qint64 perPage;
    const qint64 first; ///< of the listing
    const qint64 end;
    std::vector<Previews::State> previews; ///< on pages with pictures
    bool complete = true;
    ShortDates dates;
    CellFrame frame;
    Part part = Part::Top;
    qint64 step = 0; ///< within the part
    QByteArray *page = nullptr; ///< while a bit is made
};

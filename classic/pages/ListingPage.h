#pragma once

#include "classic/pages/Cell.h"
#include "classic/pages/FolderListing.h"
#include "classic/pages/ListedEntry.h"
#include "classic/pages/ShortDates.h"
#include "server/SessionTable.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

class HTML_Element_Manager;

/// Appends the cell of an entry on a page without pictures.
void writeDirFile(QByteArray *page, const FolderListing::Entry &entry, const CellFrame &frame);

/// Renders one folder as the page that browsers get. Made for one reply; borrows all it is given.
class ListingPage
{
public:
    struct Options
    {
        QString urlPath; ///< as it was asked for, decoded
        HTML_Element_Manager *pictures = nullptr; ///< null: a page without icons and previews
        bool deleting = false;
        bool uploading = false;
    };

    /// Takes the entries that the page of `clientData` shows and queues the previews they lack. A
    /// page that does not exist becomes the first one.
    ListingPage(const FolderListing &entries, Options pageOptions, SessionData &clientData);

    /// Whether all previews of the page are there, or given up.
    bool isComplete() const { return complete; }

    /// The whole page. Uses the session's message up.
    QByteArray render();

private:
    struct Shown
    {
        FolderListing::Entry entry;
        std::optional<ListedEntry> element; ///< on pages with pictures
    };

    void choosePage();
    void takeEntries();
    int sizeLimit() const;
    void addPageHead();
    void addUpLink();
    void addSortForm();
    void addActionForm();
    void addDeleteForm();
    void addMessage();
    void addEntries();
    void addCell(const Shown &shown);
    void addPageLinks();

    const FolderListing &listing;
    const Options options;
    SessionData &session;
    const qint64 perPage;
    qint64 pageIndex = 0;
    bool complete = true;
    std::vector<std::optional<Shown>> places; ///< one that can't be read keeps its place
    ShortDates dates;
    CellFrame frame;
    QByteArray page;
};

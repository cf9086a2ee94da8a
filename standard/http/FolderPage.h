#pragma once

#include "files/ListingCache.h"
#include "files/MemoryBudget.h"

#include <QByteArray>
#include <QtGlobal>

#include <memory>

namespace standard {

constexpr qint64 maxPageEntries = 5000; ///< a longer page is of use to nobody

/// In the query of a folder's URL: asks for an archive of it.
constexpr auto archiveQuery = "archive=zip";

/// A text that all who see the whole share hand each other, where the profile has such a pad.
constexpr auto padPath = ".quillon/pad";

/// A page that lists a folder for people, without scripts. The web application begins with what it
/// says, and takes it over. Written bit by bit.
class FolderPage
{
public:
    struct Frame
    {
        QByteArray path; ///< of the folder, as people call it
        QByteArray head; ///< HTML that ends the page's head
        QByteArray top; ///< HTML above the list
    };

    /// Without a listing nothing is told of what is there.
    FolderPage(const Frame &frame, ListingCache::Listing entries);

    /// Appends the next few lines.
    void writeOn(QByteArray &to);

    bool isAtEnd() const { return state == State::Ended; }

    /// Before a peer is waited for: finds a place in `budget` for what it keeps, which may be that
    /// of other pages of the same listing. Whether there was room.
    bool settle(MemoryBudget &budget);

    /// For its top: leads to an archive of it; by which a file is added, see `FormUpload`.
    static QByteArray archiveLink();
    static QByteArray uploadForm();

    /// The same: leads to the pad. `prefix` as that of `appHead`.
    static QByteArray padLink(const QByteArray &prefix);

private:
    enum class State { Begin, Rows, Ended };

    QByteArray beginning;
    ListingCache::Listing listing;
    const qint64 shown; ///< entries
    const qint64 unshown;
    qint64 next = 0;
    State state = State::Begin;
    std::shared_ptr<const MemoryBudget::Part> place;
};

} // namespace standard

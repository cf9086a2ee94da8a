#pragma once

#include "files/Entry.h"
#include "files/MemoryBudget.h"

#include <QByteArray>

#include <deque>
#include <memory>
#include <string>

namespace standard {

/// The folders below a top that are still to be listed, in the order in which they were found. It
/// may wait for a peer as long as that likes, so it keeps their names alone, and within a budget.
class FolderQueue
{
public:
    static constexpr qint64 maxBytes = qint64(16) << 20;

    struct Entered;

    /// A folder that is to be listed.
    struct Next
    {
        std::string name; ///< with a "/" behind; of the top its path
        std::shared_ptr<Entered> above; ///< the folder that it stands in; null for the top

        QByteArray path() const; ///< with a "/" behind
    };

    /// `shared` is borrowed and outlives it.
    explicit FolderQueue(MemoryBudget &shared)
        : place(shared, 0)
    {
    }

    /// What is added from now on stands in `next`, of which `facts` were found. False when links
    /// have led back to it.
    bool enter(const Next &next, const EntryFacts &facts);

    /// Adds a folder by its name. False when that is one too many for the budget; it is in the
    /// queue all the same.
    bool add(const char *name);

    bool isEmpty() const { return waiting.empty(); }

    /// The first one, which leaves the queue.
    Next take();

private:
    bool charge();

    MemoryBudget own{ maxBytes };
    MemoryBudget::Part place; ///< the same in the budget of all
    std::shared_ptr<Entered> entered; ///< the last one
    std::deque<std::shared_ptr<Entered>> waiting; ///< have something to be listed
};

} // namespace standard

#pragma once

#include "files/CopiedEntries.h"
#include "files/DiskJob.h"
#include "files/FileDescriptor.h"
#include "files/Place.h"

#include <QByteArray>

#include <memory>
#include <vector>

/// Removes what was copied of a tree from where it stood, in the order in which that was done. What
/// has changed or come since stays, and the folders that hold it. Links are never followed. Keeps
/// one open folder a level.
class CopiedRemoval final : public DiskJob
{
public:
    /// `from` is the place of what was copied.
    explicit CopiedRemoval(Place from)
        : top(std::move(from))
    {
    }

    /// Before it is run; read to its end by it.
    void setCopied(std::shared_ptr<CopiedEntries> list) { copied = std::move(list); }

    bool run(const Budget &until) override;

    /// Whether nothing stays, once it has run.
    bool isWhole() const { return whole && levels.empty(); }

private:
    struct Level
    {
        QByteArray name; ///< in the level above
        FileDescriptor folder; ///< not open when it is none any more: what it holds stays
    };

    void take(const CopiedEntries::Record &record);
    bool removeEntry(const CopiedEntries::Record &record) const;
    bool removeFolder();
    int current() const { return levels.empty() ? top.folder.get() : levels.back().folder.get(); }

    Place top;
    std::shared_ptr<CopiedEntries> copied;
    std::vector<Level> levels; ///< from the top folder to the current one
    bool whole = false; ///< what the last record named is gone
};

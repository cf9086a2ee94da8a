#pragma once

#include "files/DiskJob.h"
#include "files/FolderReader.h"
#include "files/MemoryBudget.h"
#include "files/Share.h"
#include "files/ZipLayout.h"

#include <QByteArray>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

/// Finds what an archive of a folder is to hold: files and folders, not what the server can't
/// read, nor what is hidden or being received. Links are followed as the share does it, but not to
/// a folder that they stand in.
class ZipPlan final : public DiskJob
{
public:
    static constexpr std::size_t maxEntries = 100000;

    struct Subject
    {
        std::shared_ptr<const Share> share;
        QByteArray folder; ///< a path of the share
        QByteArray leftOut; ///< a name in it that is not for visitors; empty for none
        std::optional<std::vector<QByteArray>> names; ///< of its entries; none: all of them
        MemoryBudget &memory; ///< for what is found; borrowed, outlives the result
    };

    explicit ZipPlan(Subject asked);

    bool run(const Budget &until) override;
    void abandon() override;

    /// 0, or the number of the error: `E2BIG` when there is too much, `ENOBUFS` when others hold
    /// the memory for it, `ENOENT` and `EACCES` for the folder or a name that was asked for.
    int error() const { return failure; }

    /// The result, once; only without an error.
    std::shared_ptr<const ZipLayout> takeLayout() { return maker->take(); }

private:
    void step();
    void begin();
    void takeName(const QByteArray &name);
    void readNext();
    bool leadsBack(const EntryFacts &facts) const;
    void keep(std::string name, const EntryFacts &facts);
    void enterNext();
    void fail(int number);

    const Subject subject;
    std::vector<EntryFacts> above; ///< of the top folder, and those that it stands in
    std::optional<FolderReader> folder; ///< being read
    std::size_t within = 0; ///< the n-th entry, which it is; 0: the top
    ZipEntries entries; ///< folders wait here for their turn
    std::unique_ptr<MemoryBudget::Part> memory; ///< for them
    qint64 bytes = 0; ///< that they take, about
    std::size_t next = 0; ///< that may be a folder to be read
    std::size_t nextName = 0;
    bool begun = false;
    bool ended = false;
    int failure = 0;
    std::optional<ZipLayoutMaker> maker; ///< once all is found
};

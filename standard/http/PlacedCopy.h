#pragma once

#include "files/EntryCopy.h"
#include "files/TreeRemoval.h"

#include <QByteArray>

#include <memory>
#include <optional>

namespace standard {

/// Makes a copy of a file or folder where nobody sees it, for a place that it takes once its owner
/// has found that it still may. Broken off, it changes nothing there.
class PlacedCopy final : public DiskJob
{
public:
    /// `replaces` tells that something may stand at `to`.
    PlacedCopy(std::shared_ptr<const Share> share, const QByteArray &path, Place to,
               EntryCopy::Depth depth, bool replaces);

    /// The disk has the copy before it is ready.
    void setSynced() { synced = true; }

    /// A copy with gaps takes no place, and what is copied is listed.
    void listCopied() { copy.listCopied(); }
    std::shared_ptr<CopiedEntries> copied() const { return copy.copied(); }

    bool run(const Budget &until) override;
    bool isSync() const override { return state == State::Syncing; }
    void abandon() override { copy.abandon(); }

    /// 0 when there is a copy, or the number of the error.
    int error() const { return result; }

    /// What is missing in the copy, or why there is none.
    const std::vector<EntryCopy::Failure> &failures() const { return copy.failures(); }

    /// Where it is to stand.
    const Place &place() const { return target; }

    /// Whether it may take its place although nobody waits for that: it harms nothing.
    bool isHarmless() const { return state == State::Ready && !replacing && !copied(); }

    /// Gives the copy its place, once the job is at its end. 0, or the number of the error for
    /// which everything stands there as before.
    int takePlace();

    /// What is to be removed in the end: what was replaced, or a copy that took no place. Not valid
    /// when there is no such thing.
    Place leftover();

private:
    enum class State {
        Copying,
        Syncing,
        Removing, ///< what can't be used
        Ready,
        Placed,
        Failed
    };

    void judge();
    void settle(int error);

    Place target;
    const bool replacing;
    bool synced = false;
    const QByteArray madeName; ///< where the copy is made
    EntryCopy copy;
    std::optional<TreeRemoval> removal;
    Place old; ///< what was replaced
    State state = State::Copying;
    int result = 0;
};

} // namespace standard

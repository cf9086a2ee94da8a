#pragma once

#include "files/EntryCopy.h"
#include "files/TreeRemoval.h"

#include <QByteArray>

#include <memory>
#include <optional>

namespace standard {

/// Copies a file or folder to a place. What stands there is served until the copy is whole, and
/// stays when it can't be.
class PlacedCopy final : public DiskJob
{
public:
    /// `replaces` tells that something may stand at `to`.
    PlacedCopy(std::shared_ptr<const Share> share, const QByteArray &path, Place to,
               EntryCopy::Depth depth, bool replaces);

    bool run(const Budget &until) override;

    /// 0, or the number of the error for which nothing stands at the place that did not before.
    int error() const { return result; }

    /// What is missing in the copy that stands there.
    const std::vector<EntryCopy::Failure> &failures() const { return copy.failures(); }

private:
    enum class State { Copying, Removing, Ended };

    void place();
    int exchangeNames();
    void remove(const QByteArray &name);

    Place target;
    const bool replacing;
    QByteArray madeName; ///< where the copy is made
    EntryCopy copy;
    std::optional<TreeRemoval> removal;
    State state = State::Copying;
    int result = 0;
};

} // namespace standard

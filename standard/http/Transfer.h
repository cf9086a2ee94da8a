#pragma once

#include "files/Place.h"
#include "server/Places.h"
#include "standard/http/Depth.h"
#include "standard/http/Resource.h"

#include <memory>
#include <optional>

namespace standard {

class PlacedCopy;

/// What COPY and MOVE have in common: where to, whether that may be, and copying.
class Transfer : public ResourceHandler, private PassTaker
{
public:
    explicit Transfer(Exchange &current);
    ~Transfer() override;

    void start() override;
    void ended() override;

protected:
    /// Everything is as it should be: does it.
    virtual void transfer() = 0;

    /// What is about to be changed.
    virtual std::vector<Change> changes() const = 0;

    /// Whether the Depth fits the method; else it is refused.
    virtual bool isAllowed() = 0;

    /// Whether what is found at the destination is but another name of the source, and that is no
    /// hindrance.
    virtual bool isRespelled() const { return false; }

    /// Where the destination stands, as bytes relative to the root.
    const QByteArray &destination() const { return target; }

    /// The same, as it was found at first.
    const Place &destinationPlace() const { return there; }

    const EntryFacts &source() const { return what; }

    /// Something stands at the destination and is to be replaced.
    bool replaces() const { return found.exists || found.link; }

    /// None when there is a Depth that can't be understood.
    std::optional<Depth> depth() const;

    /// Copies to the destination, in turn with other copies. When it stands there, `placed` is
    /// called; else the request is refused. A copy goes to its end though nobody may wait for the
    /// answer any more, but nothing is replaced then.
    void copy(Depth howDeep, bool listed);
    virtual void placed(const PlacedCopy &job) = 0;

    /// Removes in the background what was replaced.
    static void removeReplaced(DiskWorker &worker, Place old);

    /// The reply when it is done.
    void succeed();

    /// The same by the number of an error.
    void refuseError(int error);

private:
    bool findDestination();
    bool fits();
    Rights neededThere() const;
    void take(Pass given) override;
    void stopWaiting();
    void finishCopy();
    bool mayStillPlace();
    bool standsAsFound() const;

    QByteArray target;
    Place there;
    EntryFacts what;
    EntryFacts found;
    std::shared_ptr<PlacedCopy> copying; ///< waiting for a pass or under way
    bool waits = false; ///< for a pass
};

} // namespace standard

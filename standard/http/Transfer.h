#pragma once

#include "standard/http/Resource.h"

namespace standard {

/// What COPY and MOVE have in common: where to, and whether that may be.
class Transfer : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;

protected:
    /// Everything is as it should be: does it.
    virtual void transfer() = 0;

    /// What is about to be changed.
    virtual std::vector<Change> changes() const = 0;

    /// Whether the Depth and the rights of the visitor fit the method; else it is refused.
    virtual bool isAllowed() = 0;

    /// Where the destination stands, as bytes relative to the root.
    const QByteArray &destination() const { return target; }
    Place destinationPlace() const;

    const EntryFacts &source() const { return what; }

    /// Something stands at the destination and is to be replaced.
    bool replaces() const { return found.exists || found.link; }
    const EntryFacts &replaced() const { return found; }

    QByteArray depth() const { return exchange.request().field("Depth").value_or("infinity"); }

    /// The reply when it is done.
    void succeed();

    /// The same by the number of an error.
    void refuseError(int error);

private:
    bool findDestination();
    bool fits();

    QByteArray target;
    EntryFacts what;
    EntryFacts found;
};

} // namespace standard

#pragma once

#include "standard/http/Reply.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace standard {

class Exchange;

/// What a method is about to change. Paths are those of `Exchange::path`.
struct Change
{
    enum class Extent {
        Resource, ///< its content or properties
        Tree ///< all that lies below too
    };

    QByteArray path;
    Extent extent = Extent::Resource;
    bool membership = false; ///< it appears in its folder or goes from it
};

/// Why a change must not be made, as a reply.
struct Refusal
{
    Status status;
    Fields fields = {};
    QByteArray body = {};
};

/// Knows what must not be changed by whom: asked before anything is done, by every method that
/// changes something. One serves a whole program.
class Guard
{
public:
    Guard() = default;
    virtual ~Guard() = default;

    /// None when all of `changes` may be made by the request.
    virtual std::optional<Refusal> refusal(const Exchange &exchange,
                                           const std::vector<Change> &changes) = 0;

    /// What stood at `path`, with all below it, is gone from there: removed, moved or replaced by
    /// something else.
    virtual void removed(const Exchange &exchange, const QByteArray &path) = 0;

    /// Some of what stood at `path` or below it is gone from there.
    virtual void thinned(const Exchange &exchange, const QByteArray &path)
    {
        Q_UNUSED(exchange)
        Q_UNUSED(path)
    }

    /// It stands at `to` by now, or there as well. What stood there before was told as removed.
    virtual void moved(const Exchange &exchange, const QByteArray &from, const QByteArray &to)
    {
        Q_UNUSED(to)
        removed(exchange, from);
    }
    virtual void copied(const Exchange &exchange, const QByteArray &from, const QByteArray &to)
    {
        Q_UNUSED(exchange)
        Q_UNUSED(from)
        Q_UNUSED(to)
    }

private:
    Q_DISABLE_COPY(Guard)
};

} // namespace standard

#pragma once

#include "standard/http/Reply.h"

#include <QByteArray>

#include <memory>
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

/// What a guard remembers of what is served, to be told what became of it, also when the exchange
/// is over. Paths are those of `Exchange::path`.
class GuardedTree
{
public:
    GuardedTree() = default;
    virtual ~GuardedTree() = default;

    /// What stood at `path`, with all below it, is gone from there: removed, moved or replaced by
    /// something else.
    virtual void removed(const QByteArray &path) = 0;

    /// Some of what stood at `path` or below it is gone from there.
    virtual void thinned(const QByteArray &path) = 0;

    /// It stands at `to` by now, or there as well. What stood there before was told as removed.
    virtual void moved(const QByteArray &from, const QByteArray &to) = 0;
    virtual void copied(const QByteArray &from, const QByteArray &to) = 0;

private:
    Q_DISABLE_COPY(GuardedTree)
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

    /// Of what is served to `exchange`; null when nothing is remembered.
    virtual std::shared_ptr<GuardedTree> tree(const Exchange &exchange)
    {
        Q_UNUSED(exchange)
        return nullptr;
    }

private:
    Q_DISABLE_COPY(Guard)
};

} // namespace standard

#pragma once

#include <QtGlobal>

#include <atomic>

/// How much may be kept in memory at once for all peers together. One serves a program, on any
/// thread.
class MemoryBudget
{
public:
    explicit MemoryBudget(qint64 most)
        : left(most)
    {
    }

    /// A part of the budget, given back at its end. Used by one thread at a time.
    class Part
    {
    public:
        /// `bytes` are taken when there are as many, else none.
        Part(MemoryBudget &from, qint64 bytes)
            : budget(from)
            , granted(from.take(bytes))
            , taken(granted ? bytes : 0)
        {
        }
        ~Part() { budget.left += taken; }

        bool isGranted() const { return granted; }

        /// Makes it `bytes`, if there are as many; false, and nothing changes, if not.
        bool resize(qint64 bytes)
        {
            if (!budget.take(bytes - taken))
                return false;
            taken = bytes;
            return true;
        }

    private:
        Q_DISABLE_COPY_MOVE(Part)

        MemoryBudget &budget;
        const bool granted;
        qint64 taken;
    };

    /// Nobody gets any more until `open`.
    void close() { closed = true; }
    void open() { closed = false; }

    qint64 unused() const { return left; } ///< bytes

private:
    bool take(qint64 bytes)
    {
        qint64 found = left;
        while (bytes <= 0 || (!closed && bytes <= found)) {
            if (left.compare_exchange_weak(found, found - bytes))
                return true;
        }
        return false;
    }

    std::atomic<qint64> left;
    std::atomic<bool> closed{ false };
};

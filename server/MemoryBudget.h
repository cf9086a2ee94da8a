#pragma once

#include <QtGlobal>

/// How much may be kept in memory at once for all peers together. One serves a program.
class MemoryBudget
{
public:
    explicit MemoryBudget(qint64 most)
        : left(most)
    {
    }

    /// A part of the budget, given back at its end.
    class Part
    {
    public:
        /// `bytes` are taken when there are as many, else none.
        Part(MemoryBudget &from, qint64 bytes)
            : budget(from)
            , taken(from.mayTake(bytes) ? bytes : 0)
            , granted(from.mayTake(bytes))
        {
            budget.left -= taken;
        }
        ~Part() { budget.left += taken; }

        bool isGranted() const { return granted; }

        /// Makes it `bytes`, if there are as many; false, and nothing changes, if not.
        bool grow(qint64 bytes)
        {
            if (!budget.mayTake(bytes - taken))
                return false;
            budget.left -= bytes - taken;
            taken = bytes;
            return true;
        }

    private:
        Q_DISABLE_COPY_MOVE(Part)

        MemoryBudget &budget;
        qint64 taken;
        const bool granted;
    };

    /// Nobody gets any more until `open`.
    void close() { closed = true; }
    void open() { closed = false; }

private:
    bool mayTake(qint64 bytes) const { return !closed && bytes <= left; }

    qint64 left;
    bool closed = false;
};

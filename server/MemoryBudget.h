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
            , taken(bytes <= from.left ? bytes : 0)
            , granted(bytes <= from.left)
        {
            budget.left -= taken;
        }
        ~Part() { budget.left += taken; }

        bool isGranted() const { return granted; }

    private:
        Q_DISABLE_COPY_MOVE(Part)

        MemoryBudget &budget;
        const qint64 taken;
        const bool granted;
    };

private:
    qint64 left;
};

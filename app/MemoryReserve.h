#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QSocketNotifier>

class MemoryTrim;

/// Memory that is kept for a shortage. Where the system gives none, each request for memory, in
/// whatever library, gets a piece of it first; then the event loop, told at once, makes room until
/// the reserve is whole again. One for the process, made in the thread of its event loop. Nothing
/// is kept where the C library is another, or a sanitizer's allocator takes the place of its own.
class MemoryReserve final : public QObject
{
public:
    /// `servers` makes room; borrowed, and outlives the reserve.
    explicit MemoryReserve(MemoryTrim &servers);
    ~MemoryReserve() override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void restore();

    MemoryTrim &memory;
    QSocketNotifier notifier;
    QBasicTimer timer; ///< runs while a part is missing
};

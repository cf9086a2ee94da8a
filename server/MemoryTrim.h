#pragma once

#include <QBasicTimer>
#include <QObject>

class DiskWorker;

/// Gives memory that is no longer used back to the system, which the allocator by itself does only
/// when the last block of its heap is freed. At most once a second, on a worker. One serves a whole
/// program.
class MemoryTrim : public QObject
{
public:
    /// `worker` is borrowed and outlives it.
    explicit MemoryTrim(DiskWorker &worker, QObject *parent = nullptr);

    /// Something large is being freed, or will be within seconds.
    void trimSoon();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    DiskWorker &disk;
    QBasicTimer timer;
    int timesLeft = 0;
};

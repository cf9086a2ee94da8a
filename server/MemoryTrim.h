#pragma once

#include <QBasicTimer>
#include <QObject>

class DiskWorker;

/// Gives memory that is no longer used back to the system, which the allocator by itself does only
/// when the last block of its heap is freed. At most once a second, on a worker. One serves a whole
/// program.
class MemoryTrim : public QObject
{
    Q_OBJECT
public:
    /// `worker` is borrowed and outlives it.
    explicit MemoryTrim(DiskWorker &worker, QObject *parent = nullptr);

    /// Something large is being freed, or will be within seconds.
    void trimSoon();

    /// There is hardly any left: nothing large is begun until `endShortage`, and whoever can do
    /// without some of theirs is asked for it, each time anew.
    void makeRoom();
    void endShortage();

    bool isShort() const { return inShortage; }

Q_SIGNALS:
    void roomNeeded();
    void shortageOver();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    DiskWorker &disk;
    QBasicTimer timer;
    int timesLeft = 0;
    bool inShortage = false;
};

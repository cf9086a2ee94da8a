#pragma once

#include "files/OpenFiles.h"
#include "files/PreviewMaker.h"
#include "files/PreviewStore.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

class DiskWorker;

struct KeptPreviewLimits
{
    std::size_t waiting = 256; ///< asks
    qint64 kept = qint64(256) * 1024 * 1024; ///< bytes on disk
    std::chrono::milliseconds time = std::chrono::seconds(20); ///< for one picture
};

/// The previews that visitors wait for, of any size, kept on disk from run to run: made one after
/// another, in the order of the asks, and once for all who ask meanwhile. Where nothing can be kept
/// they are made each time. One serves the whole program and lives in its event loop.
class KeptPreviews : public QObject
{
public:
    enum class Answer {
        Made,
        None, ///< the picture has none
        Later ///< too many wait, the picture was changed meanwhile, or none can be made now
    };
    using Told = std::function<void(Answer answer, const OpenDescriptor &preview)>;

    /// `program` is the path of quillon-preview; see `PreviewStore` for `folder`. What is left
    /// there is swept in the first turn of the loop. `diskWorker` outlives this.
    KeptPreviews(const QString &program, const QString &folder, DiskWorker &diskWorker,
                 const KeptPreviewLimits &limits = {});

    /// Tells the preview of `picture`, within a square of `edge` pixels, perhaps before this call
    /// returns; not when `asker` is gone or has left.
    void want(const ServedFile &picture, int edge, QObject *asker, Told told);

    /// `asker` waits no more. What nobody waits for is not made.
    void leave(const QObject *asker);

    /// `asker` has most likely left: whoever else waits goes first, and may take its place.
    void postpone(const QObject *asker);

private:
    enum class State {
        Idle,
        Making,
        GivenUp, ///< making what isn't wanted any more
        Keeping ///< on disk
    };

    struct Wish
    {
        QByteArray name; ///< in the store
        QByteArray kind; ///< as the program takes it
        ServedFile picture;
        QPointer<QObject> asker;
        Told told;
        bool isPostponed = false;
    };

    bool makeRoom();
    void refuseLast();
    void stopUnless(const std::function<bool(const Wish &)> &isReason);
    void makeNext();
    void makingEnded(PreviewMaker::End end);
    void keep();
    void tell(Answer answer);
    void sweep();

    const std::size_t mostWaiting;
    const PreviewStore store;
    DiskWorker &disk;
    State state = State::Idle;
    std::vector<Wish> waiting; ///< the next one first
    Wish current; ///< like the next, unless idle
    OpenDescriptor preview; ///< in memory
    qint64 added = 0; ///< bytes on disk since it was swept
    QTimer turn; ///< of `makeNext`
    PreviewMaker maker;
};

#pragma once

#include "files/DiskWorker.h"
#include "files/FileDescriptor.h"
#include "files/Place.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <map>
#include <memory>
#include <optional>

class Share;

namespace standard {

/// What visitors removed and may have back: for a moment it stands hidden beside where it was. One
/// serves a whole program, in its event loop; its end removes what is left. What can't be removed
/// has its name again, as with any other DELETE.
class RemovedEntries final : public QObject
{
public:
    static constexpr std::chrono::seconds lasting{ 15 }; ///< a page offers it for ten

    struct Removed
    {
        QByteArray visitor;
        std::shared_ptr<const Share> share; ///< the whole one
        QPointer<DiskWorker> disk; ///< that of the program
        QByteArray path; ///< of the share, where it was
        Place hidden; ///< where it is: beside that, wherever the folder goes
        FileDescriptor unswept; ///< it, locked, so that nobody takes it for left behind
    };

    /// Open and locked, for `Removed`; not open where it can't be.
    static FileDescriptor lockedAt(const Place &place);

    RemovedEntries();
    ~RemovedEntries() override;

    /// Whether a visitor may be promised one more.
    bool hasRoomFor(const QByteArray &visitor) const;

    /// Keeps what has its hidden name by now. The id by which its visitor can have it back.
    QByteArray keep(Removed removed);

    /// None when there is no such thing, or it is another visitor's.
    const Removed *find(const QByteArray &id, const QByteArray &visitor) const;

    /// It is back, or gone.
    void forget(const QByteArray &id) { kept.erase(id); }

private:
    Q_DISABLE_COPY_MOVE(RemovedEntries)

    using Clock = std::chrono::steady_clock;

    struct Kept
    {
        Removed removed;
        Clock::time_point end;
    };

    void expire();
    static void remove(Removed removed);

    std::map<QByteArray, Kept> kept; ///< by id
    QTimer timer; ///< runs while there is anything
};

} // namespace standard

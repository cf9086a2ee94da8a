#pragma once

#include "files/DiskWorker.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QtGlobal>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include <sys/types.h>

class Share;

namespace standard {

/// Knows the uploads that are open, to count them and what they will need; those of an earlier run
/// are known once somebody goes on with them. Removes what is given up, also when its share is
/// served no more. One serves a whole program, in its event loop.
class OpenUploads final : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int mostOfVisitor = 100;

    struct Upload
    {
        QByteArray visitor;
        std::shared_ptr<const Share> share; ///< the whole one
        QPointer<DiskWorker> disk; ///< that of the program
        QByteArray folder; ///< where it stands, a path of the share
        dev_t device = 0; ///< of the same
        qint64 left = 0; ///< bytes that are still to come
        qint64 expires = 0; ///< seconds since 1970-01-01 UTC
        std::optional<Clock::time_point> lastByte = {}; ///< none before the first one
    };

    OpenUploads();

    /// Whether a visitor may begin one more.
    bool mayBegin(const QByteArray &visitor);

    /// Bytes that are still to come to a device, as far as they seem to be on their way: who merely
    /// announces an upload keeps nobody else out.
    qint64 promised(dev_t device) const;

    /// Notes an upload; the one that is known by `id` when there is one.
    std::shared_ptr<Upload> enter(const QByteArray &id, const Upload &upload);

    /// It is there no more.
    void leave(const QByteArray &id) { open.erase(id); }

    /// It is whole and has its name. Its sender may not hear of that, and ask.
    void finish(const QByteArray &id, const QByteArray &owner, qint64 length);

    /// The length of one that is whole by now; none when it is not, or is another owner's.
    std::optional<qint64> finishedLength(const QByteArray &id, const QByteArray &owner) const;

private:
    Q_DISABLE_COPY_MOVE(OpenUploads)

    struct Finished
    {
        QByteArray id;
        QByteArray owner;
        qint64 length;
    };

    void expire();
    int countOf(const QByteArray &visitor) const;
    void forgetGone(const std::function<bool(const Upload &)> &isSuspect);
    void forgetSomeGone();

    std::map<QByteArray, std::shared_ptr<Upload>> open; ///< by id
    QByteArray lookedAt; ///< the last id that `forgetSomeGone` came to
    std::deque<Finished> finished; ///< the latest
    QTimer timer; ///< runs while there is anything
};

} // namespace standard

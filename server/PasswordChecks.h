#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>

class DiskWorker;
class HashCheck;
class Profile;

/// Finds out whether passwords fit their hashes: one at a time, as each takes time and memory, and
/// never in the event loop. What fitted is remembered, as some programs log in with each request.
/// One serves a whole program.
class PasswordChecks : public QObject
{
public:
    enum class Verdict {
        Fits,
        Wrong,
        Busy ///< too many are waiting, or there is no memory
    };

    using Clock = std::chrono::steady_clock;
    using Done = std::function<void(Verdict)>;

    static constexpr std::chrono::minutes memory{ 1 }; ///< since it was last asked for
    static constexpr int maxWaiting = 100;
    static constexpr int maxRemembered = 1000;

    /// `worker` is borrowed and outlives it.
    explicit PasswordChecks(DiskWorker &worker);
    ~PasswordChecks() override;

    /// What the password of `user` is to be checked against; empty when it isn't kept hashed. An
    /// unknown user, among those who have hashes, gets one too: the time tells nobody who exists.
    static QByteArray hashFor(const Profile &profile, const QByteArray &user);

    /// What a connection keeps of a password that fitted its hash, to know it again: of use to this
    /// object alone, and another one once the hash has changed. Never empty.
    QByteArray proof(const QByteArray &password, const QByteArray &hash) const;

    /// Whether the two are known to fit, at `now`.
    bool remembers(const QByteArray &password, const QByteArray &hash,
                   Clock::time_point now = Clock::now());

    /// Checks them. `done` is called once, perhaps before this call returns, but not after
    /// `context` is gone.
    void check(const QByteArray &password, const QByteArray &hash, QObject *context, Done done);

private:
    struct Waiting
    {
        std::shared_ptr<HashCheck> job;
        QPointer<QObject> context;
        Done done;
    };

    void remember(const QByteArray &found);
    void next();
    void finish(const Waiting &checked);

    DiskWorker &disk;
    QByteArray key; ///< of the proofs: they are of no use elsewhere
    QHash<QByteArray, Clock::time_point> remembered; ///< until when
    std::deque<Waiting> waiting;
    bool busy = false;
};

#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <memory>

class Profile;

/// One browser session: what outlives a single request.
/// Shared by the session table and the requests that are being served with it.
struct SessionData
{
    enum SortMode { ByName = 0, ByTime = 1, BySize = 2 };

    int uses = 0; ///< requests of this session that are being served, see `SessionUse`
    bool showHidden = true; ///< listings include hidden entries
    QString password; ///< as typed into the login page
    QList<QHostAddress> loginAddresses; ///< where that was; from elsewhere it does not count
    int sortMode = ByName;
    qint64 id = 0; ///< as sent in the cookie "ID"
    int page = 0; ///< zero-based page of the listing
    int itemsPerPage = 24;
    std::chrono::steady_clock::time_point lastSeen =
        std::chrono::steady_clock::now(); ///< when the last request ended
    QByteArray message; ///< shown once atop the next listing

    /// `fitting` was typed into the login page at `peer`. Two visitors may have been given the
    /// same number: neither logs the other out.
    void logIn(const QString &fitting, const QHostAddress &peer);

    bool isLoggedIn() const { return !password.isEmpty(); }
    bool isLoggedInFrom(const QHostAddress &peer) const { return loginAddresses.contains(peer); }

    bool operator==(const SessionData &other) const { return id == other.id; }
};

using Session = std::shared_ptr<SessionData>;

/// A request of the session is being served while it lives; from then on the session idles.
class SessionUse
{
public:
    explicit SessionUse(Session used);
    ~SessionUse();

    const Session &session() const { return held; }

private:
    Q_DISABLE_COPY_MOVE(SessionUse)

    Session held;
};

/// The session table of one server. Sessions that idle longer than the profile's lifetime go.
class SessionTable : public QObject
{
    Q_OBJECT
public:
    /// Beyond this number those without a login, and then those idle the longest, make room.
    static constexpr int maxSessions = 10000;

    SessionTable();

    /// Takes over the session lifetime; it counts from the next expiry pass on.
    void profileEdited(const Profile *profile);

    void startTimer();
    void stopTimer();

    /// The session that a cookie of this value names (one that is no number names session 0); when
    /// the table has none, the one handed out under that number, else a new one is entered. With a
    /// strict profile none is entered so, and it is null then.
    Session ofCookie(const QByteArray &value);

    /// A new session under a number from 0 to 999, which enters the table when the number comes
    /// back; with a strict profile under one that nobody can guess, and in the table.
    Session handOut();

    /// Whether the session is in the table or may still enter it; false once it expired.
    bool holds(const Session &session) const;

    int sessionCount() const { return int(sessions.size()); }

public Q_SLOTS:
    void checkSessions();

private:
    Session enter(qint64 id);
    void makeRoom();

    int lifetime = 0; ///< seconds
    bool strict = false;
    QTimer timer;
    QHash<qint64, Session> sessions;
    QHash<qint64, std::weak_ptr<SessionData>> handedOut;
};

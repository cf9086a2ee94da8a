#pragma once

#include <QByteArray>
#include <QHash>

#include <chrono>
#include <list>
#include <memory>

struct ProfileValues;

/// Who has logged in by the page of the standard face at one served item. A session ends by
/// `end`, by idleness, and with the password that it was begun by. Kept with the item's `Service`.
class LoginSessions
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr int maxSessions = 10000; ///< further ones take the place of the longest idle
    static constexpr int maxOfAccount = 100; ///< the same among those of an account

    /// A request of a session: while it lives, the session does not idle.
    class Use
    {
    public:
        /// `usedTable` is borrowed and outlives it.
        Use(LoginSessions &usedTable, QByteArray usedKey, QByteArray user);
        ~Use();

        const QByteArray &account() const { return name; } ///< empty where any name will do

    private:
        Q_DISABLE_COPY_MOVE(Use)

        LoginSessions &table;
        const QByteArray key;
        const QByteArray name;
    };

    LoginSessions();

    /// What tells the password of `account` from any other that may be kept instead of it; empty
    /// when there is no such account, or no password is asked for.
    QByteArray markOf(const ProfileValues &profile, const QByteArray &account) const;

    /// A session of who brought the password of that mark. Gives its number, as a text that nobody
    /// can guess: 128 random bits.
    QByteArray begin(const QByteArray &account, const QByteArray &mark,
                     Clock::time_point now = Clock::now());

    /// Null when there is no such session, or `profile` ends it.
    std::unique_ptr<const Use> use(const QByteArray &number, const ProfileValues &profile,
                                   Clock::time_point now = Clock::now());

    void end(const QByteArray &number);

private:
    Q_DISABLE_COPY_MOVE(LoginSessions)

    struct Session
    {
        QByteArray key;
        QByteArray account;
        QByteArray mark;
        Clock::time_point idleSince;
        int uses = 0;
    };
    using Sessions = std::list<Session>;

    QByteArray keyOf(const QByteArray &number) const;
    void makeRoom(const QByteArray &account);
    void release(const QByteArray &key);
    void remove(Sessions::iterator session);

    const QByteArray secret; ///< numbers and passwords are kept as what it makes of them
    Sessions idle; ///< the longest idle first
    Sessions busy;
    QHash<QByteArray, Sessions::iterator> places; ///< of both, by key
};

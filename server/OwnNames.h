#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QString>

#include <chrono>

class Socket;
struct ProfileValues;

/// Host and port, as URLs and Host lines write them (RFC 3986, section 3.2).
struct Authority
{
    /// `usualPort` is meant where `text` has none. Without a host when it makes no sense.
    static Authority of(const QByteArray &text, int usualPort);

    QString host; ///< in lower case, without the brackets of IPv6
    int port = 0;
};

/// Where a connection reached this machine.
struct Reached
{
    static Reached by(const Socket &connection);

    QHostAddress address;
    int port = 0;
};

/// Whether the machine that was reached at `address` has this name or address.
bool isOwnHost(const QString &host, const QHostAddress &address);

/// Whether `called`, what a visitor calls this server, is a name of the machine or the profile, or
/// an address of the machine. A browser that was led here by another name is about to be tricked:
/// the page that has this name could read whatever the browser gets. Ports count unless a trusted
/// proxy said the name, or the profile has it.
bool isMeantForUs(const QByteArray &called, bool saidByProxy, const Reached &reached,
                  const ProfileValues &profile);

/// What visitors called a server last and was meant for it. To find that out takes longer than to
/// answer, and nearly all of them say the same; a second later names and addresses may be others.
class LastName
{
public:
    bool is(const QByteArray &called) const { return called == name && Clock::now() < end; }
    void keep(const QByteArray &called);

private:
    using Clock = std::chrono::steady_clock;

    QByteArray name;
    Clock::time_point end;
};

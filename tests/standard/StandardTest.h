#pragma once

#include "standard/http/StandardFace.h"
#include "tests/support/LiveServer.h"

/// The reply to one request on a connection of its own. Nothing of a body that goes on until the
/// connection ends is lost, and HEAD may tell a length.
inline RawReply replyTo(const LiveServer &server, const QByteArray &method,
                        const QByteArray &target, const QByteArray &headers = {},
                        const QByteArray &body = {})
{
    RawClient client(server.port());
    client.send(rawRequest(method, target, headers + "Connection: close\r\n", body));
    client.waitForClose(60000); // what gives way to other programs may take long
    const QByteArray all = client.readToEnd();
    const int end = int(all.indexOf("\r\n\r\n"));
    return { all.left(end), all.mid(end + 4) };
}

/// The header line of a login by "name:password".
inline QByteArray basicLogin(const QByteArray &account)
{
    return "Authorization: Basic " + account.toBase64() + "\r\n";
}

/// The body of a LOCK that lets nobody else write.
constexpr auto lockBody = "<lockinfo xmlns=\"DAV:\"><lockscope><exclusive/></lockscope>"
                          "<locktype><write/></locktype><owner><href>me</href></owner></lockinfo>";

/// A real server of the standard face that shares a fresh folder of `files`, names and contents.
class StandardServer : public LiveServer
{
public:
    using Files = std::initializer_list<std::pair<const char *, QByteArray>>;

    explicit StandardServer(standard::Routes routes)
        : StandardServer({}, std::move(routes))
    {
    }
    explicit StandardServer(Files files = {}, standard::Routes routes = standard::fileRoutes())
        : LiveServer(standard::standardFaces(std::move(routes)))
    {
        for (const auto &[name, content] : files)
            addFile(QString::fromUtf8(name), content);
        start();
    }

    /// `accounts` are "name:password", with blanks between.
    void askForLogin(const QByteArray &accounts) const
    {
        profile->authMode = AuthBasic;
        profile->users = QString::fromUtf8(accounts).split(QLatin1Char(' '));
    }

    /// 200
    int status(const QByteArray &method, const QByteArray &target, const QByteArray &headers = {},
               const QByteArray &body = {}) const
    {
        return replyTo(*this, method, target, headers, body).status().left(3).toInt();
    }
};

#pragma once

#include "tests/support/LiveServer.h"

#include <filesystem>

/// `routes`, and plain files behind them.
inline Routes withFiles(Routes routes)
{
    for (const Route &route : fileRoutes())
        routes.push_back(route);
    return routes;
}

/// 12 000 names of one file, in a folder whose path takes a kilobyte each time it is told.
inline QString addManyFiles(const LiveServer &server)
{
    const QString folder = (QString(240, QLatin1Char('x')) + QLatin1Char('/')).repeated(4);
    server.addFile(folder + QLatin1String("file"), {});
    const std::string first = server.sharePath(folder + QLatin1String("file")).toStdString();
    for (int i = 1; i < 12000; ++i)
        std::filesystem::create_hard_link(first, first + std::to_string(i));
    return folder;
}

/// Sends a request and reads nothing of its reply. Whether the server stops after a part of that,
/// and serves others.
inline bool waitsAndServes(const LiveServer &live, RawClient &client, const QByteArray &request)
{
    live.addFile(QStringLiteral("other"), "hello");
    const qint64 before = live.server->sentBytes();
    client.socket->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, 65536);
    client.socket->setReadBufferSize(1);
    client.send(request);
    const QByteArray other = RawClient(live.port()).exchange(rawRequest("GET", "/other")).body;
    qint64 last = 0;
    const auto isSettled = [&] {
        return std::exchange(last, live.server->sentBytes()) == last && last > before + 10000;
    };
    return other == "hello" && QTest::qWaitFor(isSettled, 10000) && last - before < 6000000;
}

#pragma once

#include "classic/dav/Routes.h"
#include "tests/support/LiveServer.h"

/// A server of the WebDAV methods, something to share, and a client: fresh for each test.
class DavTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        client.reset();
        live.reset(); // before the next one: it gives the home folder back
        live = std::make_unique<LiveServer>(davRoutes());
        live->addFile(QStringLiteral("a.txt"), "alpha");
        live->addFile(QStringLiteral("b.txt"), "beta");
        live->addFile(QStringLiteral("folder/inner.txt"), "inner");
        live->addFile(QStringLiteral("folder/sub/b.txt"), "deep");
        live->addFile(QStringLiteral("folder/.hidden"), "hidden");
        QVERIFY(QFile::link(QStringLiteral("nowhere"), path("broken")));
        QVERIFY(QFile::link(QStringLiteral("folder/sub"), path("link")));
        live->start();
        client = std::make_unique<RawClient>(live->port());
    }

protected:
    QString path(const QByteArray &name) const { return live->sharePath(QString::fromUtf8(name)); }
    QByteArray content(const QByteArray &name) const
    {
        return live->fileContent(QString::fromUtf8(name));
    }
    bool isThere(const QByteArray &name) const
    {
        const QFileInfo entry(path(name));
        return entry.exists() || entry.isSymLink();
    }
    QStringList entries() const
    {
        const QDir dir(live->sharePath());
        return dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    RawReply ask(const QByteArray &method, const QByteArray &target, const QByteArray &headers = {},
                 const QByteArray &body = {}) const
    {
        return client->exchange(rawRequest(method, target, headers, body));
    }
    QByteArray status(const QByteArray &request) const
    {
        return client->exchange(request).status();
    }

    std::unique_ptr<LiveServer> live;
    std::unique_ptr<RawClient> client;
};

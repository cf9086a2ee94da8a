#include "standard/dav/Routes.h"
#include "standard/web/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Data.h"
#include "tests/support/Litmus.h"

#include <QtTest>

namespace {

constexpr auto haproxyStrip = R"(http-request set-header X-Forwarded-Prefix /share
  http-request replace-path /share(/.*) \1)";

/// A proxy that ends TLS and calls the server by another name, with all of it below /share/.
class Proxy
{
public:
    Proxy(const QString &program, bool strips, quint16 server)
        : front(QString::number(freePort()))
    {
        makeKeys(folder.path());
        writeFile(folder.filePath(QStringLiteral("pair")),
                  readFile(folder.filePath(QStringLiteral("key")))
                      + readFile(folder.filePath(QStringLiteral("certificate"))));
        const bool isNginx = program == QLatin1String("nginx");
        const QString given = QLatin1String(isNginx ? "nginx.conf" : "haproxy.cfg");
        QString text = QString::fromLatin1(readFile(QStringLiteral(SETTINGS "/") + given));
        text.replace(QLatin1String("@path"), QLatin1String(strips ? "/" : ""))
            .replace(QLatin1String("@prefix"), QLatin1String(strips ? "/share" : ""))
            .replace(QLatin1String("@strip"), QLatin1String(strips ? haproxyStrip : ""))
            .replace(QLatin1String("@dir"), folder.path())
            .replace(QLatin1String("@front"), front)
            .replace(QLatin1String("@back"), QString::number(server));
        const QString file = folder.filePath(QStringLiteral("conf"));
        writeFile(file, text.toUtf8());
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QStringLiteral("/usr/sbin/") + program,
                      isNginx ? QStringList{ QStringLiteral("-c"), file, QStringLiteral("-e"),
                                             folder.filePath(QStringLiteral("log")) }
                              : QStringList{ QStringLiteral("-db"), QStringLiteral("-f"), file });
    }
    ~Proxy()
    {
        process.terminate();
        process.waitForFinished();
    }

    QString url() const { return QStringLiteral("https://127.0.0.1:%1/share/").arg(front); }

private:
    const QTemporaryDir folder;
    const QString front;
    QProcess process;
};

/// What curl prints with these arguments, separated by blanks.
QByteArray curl(const QString &arguments)
{
    const QString all = QStringLiteral("-sk --retry-connrefused --retry 5 -u a:b ") + arguments;
    QProcess process;
    process.start(QStringLiteral("curl"), all.split(QLatin1Char(' ')));
    QEventLoop loop;
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    loop.exec();
    return process.readAll();
}

} // namespace

/// Puts real proxies, where they are installed, in front of the standard face.
class ProxiesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void standInFront_data();
    void standInFront();

private:
    static void uploadsInParts(const Proxy &proxy);
};

void ProxiesTest::standInFront_data()
{
    columnsOf<QString, bool>("program", "strips");
    row("nginx takes the prefix off", QStringLiteral("nginx"), true);
    row("nginx leaves the prefix on", QStringLiteral("nginx"), false);
    row("haproxy takes the prefix off", QStringLiteral("haproxy"), true);
    row("haproxy leaves the prefix on", QStringLiteral("haproxy"), false);
}

void ProxiesTest::standInFront()
{
    QFETCH(const QString, program);
    QFETCH(const bool, strips);
    for (const QString &needed : { program, QStringLiteral("litmus"), QStringLiteral("curl") }) {
        if (!hasProgram(needed))
            QSKIP(qPrintable(needed + QLatin1String(" is not installed")));
    }
    StandardServer server({ { "share/a b", "0123456789" } },
                          standard::withUploads(standard::withDav(standard::fileRoutes())));
    server.askForLogin("a:b");
    server.profile->trustedProxies = QStringList{ QStringLiteral("127.0.0.1") };
    server.profile->pathPrefix = strips ? "" : "/share";
    const Proxy proxy(program, strips, server.port());

    const QString share = proxy.url() + QLatin1String("share");
    for (const char *scheme : { "--basic", "--digest" })
        QCOMPARE(curl(share + QLatin1String("/a%20b -r 3-4 ") + QLatin1String(scheme)),
                 QByteArray("34"));
    const QByteArray list = curl(QStringLiteral("-X PROPFIND -H Depth:1 %1/").arg(share));
    QVERIFY2(list.contains("<D:href>/share/share/a%20b</D:href>"), list.constData());
    const QByteArray redirect = curl(QStringLiteral("-D - ") + share);
    QVERIFY2(redirect.toLower().contains("location: /share/share/\r\n"), redirect.constData());
    uploadsInParts(proxy);
    QCOMPARE(server.fileContent(QStringLiteral("share/new file")), QByteArray("0123456789"));
    // Locks, Destination and conditions by URLs of outside, all with Digest.
    passesLitmus(proxy.url(), { QStringLiteral("a"), QStringLiteral("b") });
}

/// By the Location that the server gives for outside.
void ProxiesTest::uploadsInParts(const Proxy &proxy)
{
    const QTemporaryDir folder;
    const QString lines = folder.filePath(QStringLiteral("lines"));
    writeFile(lines,
              "Tus-Resumable: 1.0.0\nUpload-Length: 10\nContent-Type: "
              "application/offset+octet-stream\nUpload-Metadata: filename "
                  + QByteArray("new file").toBase64() + '\n');
    const QString common = QStringLiteral("-D - -H @%1 ").arg(lines);
    const QByteArray made = curl(common + QStringLiteral("-d 01234 ") + proxy.url()
                                 + QStringLiteral(".quillon/tus/share"));
    const auto location = QRegularExpression(QStringLiteral("\r\nlocation: /share/(\\S+)"),
                                             QRegularExpression::CaseInsensitiveOption)
                              .match(QString::fromLatin1(made));
    QVERIFY2(location.hasMatch(), made.constData());
    const QByteArray rest = curl(common + QStringLiteral("-X PATCH -d 56789 -H Upload-Offset:5 ")
                                 + proxy.url() + location.captured(1));
    QVERIFY2(rest.contains(" 204"), rest.constData());
}

QTEST_GUILESS_MAIN(ProxiesTest)
#include "tst_proxies.moc"

#include "standard/dav/Routes.h"
#include "tests/standard/StandardTest.h"
#include "tests/support/Litmus.h"

#include <QTcpServer>
#include <QtTest>

namespace {

constexpr auto nginxText = R"(
daemon off; pid @dir/pid; error_log @dir/log; events {}
http {
  access_log off; client_max_body_size 0;
  client_body_temp_path @dir/t1; proxy_temp_path @dir/t2; fastcgi_temp_path @dir/t3;
  uwsgi_temp_path @dir/t4; scgi_temp_path @dir/t5;
  server {
    listen 127.0.0.1:@front ssl; ssl_certificate @dir/certificate; ssl_certificate_key @dir/key;
    location /share/ {
      proxy_pass http://127.0.0.1:@back@path; proxy_http_version 1.1;
      proxy_request_buffering off; proxy_buffering off;
      proxy_set_header Host inner.example;
      proxy_set_header X-Forwarded-Host $http_host;
      proxy_set_header X-Forwarded-Proto https;
      proxy_set_header X-Forwarded-Prefix "@prefix";
      proxy_set_header X-Forwarded-For $proxy_add_x_forwarded_for;
    }
  }
}
)";

constexpr auto haproxyText = R"(
defaults
  mode http
  timeout connect 5s
  timeout client 30s
  timeout server 30s
frontend outside
  bind 127.0.0.1:@front ssl crt @dir/pair
  option forwardfor
  http-request set-header X-Forwarded-Host %[req.hdr(Host)]
  http-request set-header X-Forwarded-Proto https
  http-request del-header X-Forwarded-Prefix
  @strip
  http-request set-header Host inner.example
  default_backend inside
backend inside
  server one 127.0.0.1:@back
)";

constexpr auto haproxyStrip = R"(http-request set-header X-Forwarded-Prefix /share
  http-request replace-path /share(/.*) \1)";

QString freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return QString::number(probe.serverPort());
}

/// A proxy that ends TLS and calls the server by another name, with all of it below /share/.
class Proxy
{
public:
    Proxy(const QString &program, bool strips, quint16 server)
        : front(freePort())
    {
        makeKeys(folder.path());
        writeFile(folder.filePath(QStringLiteral("pair")),
                  readFile(folder.filePath(QStringLiteral("key")))
                      + readFile(folder.filePath(QStringLiteral("certificate"))));
        const bool isNginx = program == QLatin1String("nginx");
        QString text = QString::fromLatin1(isNginx ? nginxText : haproxyText);
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

/// What curl prints with these arguments.
QByteArray curl(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("curl"),
                  QStringList{ QStringLiteral("-sk"), QStringLiteral("--retry-connrefused"),
                               QStringLiteral("--retry"), QStringLiteral("5") }
                      + arguments);
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
};

void ProxiesTest::standInFront_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<bool>("strips");
    for (const char *program : { "nginx", "haproxy" }) {
        QTest::addRow("%s takes the prefix off", program) << QString::fromLatin1(program) << true;
        QTest::addRow("%s leaves the prefix on", program) << QString::fromLatin1(program) << false;
    }
}

void ProxiesTest::standInFront()
{
    QFETCH(const QString, program);
    QFETCH(const bool, strips);
    for (const QString &needed : { program, QStringLiteral("litmus"), QStringLiteral("curl") }) {
        if (!hasProgram(needed))
            QSKIP(qPrintable(needed + QLatin1String(" is not installed")));
    }
    StandardServer server(standard::withDav(standard::fileRoutes()));
    server.profile->enableUpload = Qt::Checked;
    server.profile->enableDelete = Qt::Checked;
    server.profile->authMode = AuthBasic;
    server.profile->users = QStringList{ QStringLiteral("a:b") };
    server.profile->trustedProxies = QStringList{ QStringLiteral("127.0.0.1") };
    server.profile->pathPrefix = strips ? "" : "/share";
    server.addFile(QStringLiteral("share/a b"), "0123456789");
    const Proxy proxy(program, strips, server.port());

    const QString login = QStringLiteral("a:b");
    for (const char *scheme : { "--basic", "--digest" }) {
        QCOMPARE(
            curl({ QString::fromLatin1(scheme), QStringLiteral("-u"), login, QStringLiteral("-r"),
                   QStringLiteral("3-4"), proxy.url() + QLatin1String("share/a%20b") }),
            QByteArray("34"));
    }
    const QByteArray list =
        curl({ QStringLiteral("-u"), login, QStringLiteral("-X"), QStringLiteral("PROPFIND"),
               QStringLiteral("-H"), QStringLiteral("Depth: 1"),
               proxy.url() + QLatin1String("share/") });
    QVERIFY2(list.contains("<D:href>/share/share/a%20b</D:href>"), list.constData());
    const QByteArray redirect = curl({ QStringLiteral("-u"), login, QStringLiteral("-D"),
                                       QStringLiteral("-"), proxy.url() + QLatin1String("share") });
    QVERIFY2(redirect.toLower().contains("location: /share/share/\r\n"), redirect.constData());
    // Locks, Destination and conditions by URLs of outside, all with Digest.
    passesLitmus(proxy.url(), { QStringLiteral("a"), QStringLiteral("b") });
}

QTEST_GUILESS_MAIN(ProxiesTest)
#include "tst_proxies.moc"

#include "platform/Links.h"
#include "tests/support/LiveServer.h"

#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(LinkKind)

class tst_links : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kinds_data()
    {
        QTest::addColumn<QByteArray>("entries"); // of the interface's folder
        QTest::addColumn<int>("type");
        QTest::addColumn<LinkKind>("kind");
        QTest::newRow("network card") << QByteArray("device") << 1 << LinkKind::Cable;
        QTest::newRow("Wi-Fi card") << QByteArray("device wireless") << 1 << LinkKind::Wireless;
        QTest::newRow("bridge of containers") << QByteArray("bridge") << 1 << LinkKind::Container;
        QTest::newRow("end in a container") << QByteArray() << 1 << LinkKind::Container;
        QTest::newRow("tunnel of a program") << QByteArray("tun_flags") << 65534 << LinkKind::Vpn;
        QTest::newRow("tunnel of the kernel") << QByteArray() << 65534 << LinkKind::Vpn;
        QTest::newRow("modem") << QByteArray("device") << 519 << LinkKind::Mobile;
        QTest::newRow("something else") << QByteArray("device") << 24 << LinkKind::Unknown;
    }

    void kinds()
    {
        QFETCH(QByteArray, entries);
        QFETCH(int, type);
        const QTemporaryDir folder;
        writeFile(folder.filePath(QStringLiteral("type")), QByteArray::number(type) + '\n');
        for (const QByteArray &entry : entries.split(' '))
            writeFile(folder.path() + QLatin1String("/" + entry + "/x"), {});
        QTEST(linkKind(folder.path()), "kind");
    }

    void routes()
    {
        const QByteArray ipv4 =
            "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
            "eth0\t00000000\t0107A8C0\t0003\t0\t0\t700\t00000000\t0\t0\t0\n"
            "eth0\t00000000\t0107A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
            "tun0\t00000000\t0107A8C0\t0003\t0\t0\t50\t00000080\t0\t0\t0\n" // half of all
            "old0\t00000000\t0107A8C0\t0002\t0\t0\t50\t00000000\t0\t0\t0\n"
            "cut0\t00000000\t0107A8C0\t0003\n";
        const QByteArray all = "00000000000000000000000000000000 00 ";
        const QByteArray ipv6 = all + all + all.left(33)
            + "00000400 00000001 00000000 00000003 wlan0\n" + all + all + all.left(33)
            + "00000001 00000001 00000000 00000003 eth0\n" + all + all + all.left(33)
            + "ffffffff 00000001 00000000 00200200 lo\n";
        const QMap<QString, quint32> expected{ { QStringLiteral("eth0"), 100 },
                                               { QStringLiteral("wlan0"), 1024 } };
        QCOMPARE(defaultRoutes(ipv4, ipv6), expected);
    }

    void order()
    {
        const auto at = [](const char *ip, const Link &link) {
            return LinkedAddress{ QHostAddress(QString::fromLatin1(ip)), link };
        };
        const QList<LinkedAddress> best = bestFirst({
            at("172.17.0.1", { LinkKind::Container }),
            at("10.8.0.2", { LinkKind::Vpn }),
            at("169.254.7.7", { LinkKind::Cable }),
            at("192.168.0.2", { LinkKind::Cable, false, 0 }), // unplugged
            at("192.168.0.3", { LinkKind::Wireless }),
            at("192.168.0.4", { LinkKind::Cable }),
            at("192.168.0.5", { LinkKind::Wireless, true, 600 }),
            at("192.168.0.6", { LinkKind::Mobile, true, 100 }),
            at("10.64.0.1", { LinkKind::Mobile }),
        });
        QStringList reached;
        QStringList others;
        for (const LinkedAddress &each : best)
            (each.isReachable() ? reached : others).append(each.ip.toString());
        QCOMPARE(reached.join(QLatin1Char(' ')),
                 QStringLiteral("192.168.0.6 192.168.0.5 192.168.0.4 192.168.0.3 10.8.0.2"));
        QCOMPARE(others.join(QLatin1Char(' ')),
                 QStringLiteral("192.168.0.2 169.254.7.7 10.64.0.1 172.17.0.1"));
    }
};

QTEST_GUILESS_MAIN(tst_links)
#include "tst_links.moc"

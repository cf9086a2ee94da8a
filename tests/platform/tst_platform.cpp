#include "files/FileDescriptor.h"
#include "platform/Announcer.h"
#include "platform/KeepAwake.h"
#include "platform/Notifier.h"
#include "tests/platform/PrivateBus.h"

#include <QSignalSpy>

#include <poll.h>
#include <unistd.h>

/// What is asked of the system, whether there is somebody to ask or not.
class TestPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhereTheServerIs();
    void takesAnotherNameWhenItsOwnIsTaken();
    void followsAvahi();
    void keepsTheSystemAwake();
    void showsNotifications();

private:
    const PrivateBus bus;
    const Announcement files{ "Files"_q, 8080, false, {} };
    const QString asked = "Reset; AddService -1 -1 0 %1 _http._tcp   8080 path=/; "
                          "AddService -1 -1 0 %1 _webdav._tcp   8080 path=/; Commit"_q;
};

void TestPlatform::tellsWhereTheServerIs()
{
    StandInAvahi avahi(bus);
    auto announcer = std::make_unique<Announcer>(bus.connection("user"_q));
    const QString euros(22, QChar(0x20ac)); // 66 bytes
    announcer->announce({ " ab\n"_q + euros, 443, true, "jö"_q, Announcement::IpVersion::V4, 7 });
    const QString told = "AddService 7 0 0 ab %1 %2   443 path=/ u=jö"_q.arg(euros.left(20));
    QCOMPARE(avahi.takenUpTo("Commit"_q),
             "EntryGroupNew; Reset; %1; %2; Commit"_q.arg(told.arg("_https._tcp"_q),
                                                          told.arg("_webdavs._tcp"_q)));
    announcer->withdraw();
    avahi.tellState("/"_q, "Server"_q, 2);
    QCOMPARE(avahi.takenUpTo("Reset"_q), "Reset"_q);
    announcer.reset();
    QCOMPARE(avahi.takenUpTo("Free"_q), "Free"_q);
}

void TestPlatform::takesAnotherNameWhenItsOwnIsTaken()
{
    StandInAvahi avahi(bus);
    avahi.errors.insert("AddService"_q, "org.freedesktop.Avahi.CollisionError"_q);
    Announcer announcer(bus.connection("user"_q));
    QSignalSpy announced(&announcer, &Announcer::announced);
    QSignalSpy refused(&announcer, &Announcer::refused);
    announcer.announce(files);
    QVERIFY(avahi.takenUpTo("Commit"_q)
                .endsWith("Reset; GetAlternativeServiceName Files; "_q + asked.arg("Files #2"_q)));
    // Another machine may object later.
    avahi.answers["GetAlternativeServiceName"_q] = { "Files #3"_q };
    avahi.tellState("/group"_q, "EntryGroup"_q, 3);
    QVERIFY(avahi.takenUpTo("Commit"_q).endsWith(asked.arg("Files #3"_q)));
    avahi.tellState("/group"_q, "EntryGroup"_q, 2);
    QTRY_COMPARE(announced.value(0), QVariantList{ "Files #3"_q });
    avahi.tellState("/group"_q, "EntryGroup"_q, 4);
    QTRY_COMPARE(refused, QList<QVariantList>{ { "why"_q } });
}

void TestPlatform::followsAvahi()
{
    Announcer announcer(bus.connection("user"_q));
    QSignalSpy refused(&announcer, &Announcer::refused);
    announcer.announce(files);
    for (int run = 0; run < 2; ++run) {
        StandInAvahi avahi(bus);
        QCOMPARE(avahi.takenUpTo("Commit"_q), "EntryGroupNew; "_q + asked.arg("Files"_q));
        // The machine may get another name, to which everything is to lead then.
        avahi.tellState("/"_q, "Server"_q, 2);
        QCOMPARE(avahi.takenUpTo("Commit"_q), asked.arg("Files"_q));
    }
    QVERIFY(refused.isEmpty() && !bus.startedAvahi());
}

void TestPlatform::keepsTheSystemAwake()
{
    KeepAwake awake("Files are sent"_q, bus.connection("user"_q));
    awake.setNeeded(true); // there is nobody to ask
    awake.setNeeded(false);
    QTest::qWait(1000);
    int ends[2] = {};
    QVERIFY(::pipe(ends) == 0);
    const FileDescriptor reading(ends[0]);
    StandIn login(bus.connection("login"_q), "org.freedesktop.login1"_q,
                  { { "Inhibit"_q, { QVariant::fromValue(QDBusUnixFileDescriptor(ends[1])) } } });
    ::close(ends[1]);
    for (int transfer = 0; transfer < 4; ++transfer) {
        awake.setNeeded(true);
        QTRY_COMPARE(login.calls,
                     QStringList{ "Inhibit sleep:idle Quillon Files are sent block"_q });
        login.answers.clear();
        awake.setNeeded(false);
        QTest::qWait(300);
    }
    pollfd end = { reading.get(), POLLIN, 0 };
    QVERIFY(::poll(&end, 1, 0) == 0);
    QTRY_VERIFY(::poll(&end, 1, 0) == 1);
}

void TestPlatform::showsNotifications()
{
    Notifier notifier(bus.connection("user"_q));
    QSignalSpy notShown(&notifier, &Notifier::notShown);
    notifier.show("R & D"_q, "<b>"_q);
    QTRY_COMPARE(notShown, QList<QVariantList>({ { "R & D"_q, "<b>"_q } }));
    // A desktop comes up later, and then another one.
    for (const auto &[ability, text] :
         { std::pair{ "body"_q, "<b>"_q }, { "body-markup"_q, "&lt;b&gt;"_q } }) {
        StandIn service(
            bus.connection("desktop"_q), "org.freedesktop.Notifications"_q,
            { { "Notify"_q, { 7U } }, { "GetCapabilities"_q, { QStringList{ ability } } } });
        notifier.show("R & D"_q, "<b>"_q);
        QCOMPARE(service.takenUpTo("Notify"_q),
                 "GetCapabilities; Notify Quillon 0 quillon R & D %1   -1"_q.arg(text));
        for (int times = 0; times < 100; ++times)
            notifier.show("R & D"_q, QString::number(times));
        const QString last = "95\n96\n97\n98\n99"_q;
        notShown.clear();
        service.errors.insert("Notify"_q, "org.example.Full"_q);
        QCOMPARE(service.takenUpTo("Notify"_q),
                 "Notify Quillon 7 quillon R & D %1   -1"_q.arg(last));
        QTRY_COMPARE(notShown.value(0).value(1), QVariant(last));
    }
}

QTEST_GUILESS_MAIN(TestPlatform)
#include "tst_platform.moc"

#include "config/Profile.h"
#include "tests/support/LiveServer.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

QString profilePath(const QString &fileName)
{
    return Profile::ConfigDir + fileName;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray number(qint32 value)
{
    const auto u = quint32(value);
    return QByteArray()
        .append(char(u >> 24))
        .append(char(u >> 16))
        .append(char(u >> 8))
        .append(char(u));
}

/// "ab" as the file holds it: byte length and UTF-16, both big-endian.
QByteArray stored(const char *text)
{
    QByteArray bytes;
    for (const char *c = text; *c != '\0'; ++c)
        bytes.append('\0').append(*c);
    return number(int(bytes.size())) + bytes;
}

} // namespace

class TestProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void storesTheRecordInItsFixedOrder();
    void loadsWhatItSaved();
    void fallsBackToDefaults_data();
    void fallsBackToDefaults();
    void keepsADamagedFileBeside();
    void savesForTheOwnerAloneOrNotAtAll();
    void comparesAndCopiesWhatAnEditorChanges();
    void keepsFourRecentFiles();
    void startsAndEndsWithTheGlobalProfile();

private:
    std::unique_ptr<TestHome> home;
};

void TestProfile::init()
{
    home = std::make_unique<TestHome>();
}

void TestProfile::cleanup()
{
    home.reset();
}

void TestProfile::storesTheRecordInItsFixedOrder()
{
    Profile profile;
    profile.setFileName(QStringLiteral("work"));
    profile.users = QStringList{ QStringLiteral("u:p") };
    profile.expertMode = true;
    profile.dataLimit = 77;
    profile.name = QStringLiteral("work");
    profile.privateKeyFile = QStringLiteral("/k");
    profile.publicKeyFile = QStringLiteral("/c");
    QVERIFY(profile.save());

    const QByteArray null = number(-1);
    const QByteArray expected = number(1) + stored("u:p") + number(0) + number(8080) + number(0)
        + '\1' + number(2) + number(2) + number(2) + number(2) + number(0) + number(2) + number(0)
        + number(4) + number(77) + number(600) + stored("work") + null + null + null + stored("/k")
        + stored("/c") + null + '\1' + number(314);
    QCOMPARE(bytesOf(profilePath(QStringLiteral("work.cnf"))).toHex(), expected.toHex());
}

void TestProfile::loadsWhatItSaved()
{
    Profile saved;
    saved.setFileName(QStringLiteral("a"));
    saved.users = QStringList{ QStringLiteral("ä:ö:%41"), QString() };
    saved.recentFiles = QStringList{ QStringLiteral("/x") };
    saved.password = QStringLiteral("pässwort");
    saved.port = 1;
    saved.cleanExit = false;
    QVERIFY(saved.save());

    Profile::FirstRun = false;
    const Profile loaded(QStringLiteral("a.cnf"));
    QVERIFY(loaded.equals(&saved));
    QCOMPARE(loaded.cleanExit, false);
    QCOMPARE(Profile::FirstRun, false);
}

void TestProfile::fallsBackToDefaults_data()
{
    Profile profile;
    profile.setFileName(QStringLiteral("whole"));
    profile.port = 99;
    profile.save();
    const QByteArray whole = bytesOf(profilePath(QStringLiteral("whole.cnf")));

    QTest::addColumn<QByteArray>("content");
    QTest::newRow("the format mark is missing") << whole.left(whole.size() - 4);
    QTest::newRow("the format mark is another") << whole.left(whole.size() - 1) + '\0';
    QTest::newRow("cut in the middle") << whole.left(whole.size() / 2);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a count that no memory holds") << QByteArray(4, '\xfe');
    QTest::newRow("a string that no memory holds") << number(1) + QByteArray(4, '\x7e');
}

void TestProfile::fallsBackToDefaults()
{
    QFETCH(QByteArray, content);
    writeBytes(profilePath(QStringLiteral("broken.cnf")), content);

    Profile::FirstRun = false;
    const Profile loaded(QStringLiteral("broken.cnf"));
    const Profile defaults;
    QVERIFY(loaded.equals(&defaults));
    QCOMPARE(loaded.privateKeyFile, Profile::ResDir + QLatin1String("server.key"));
    QVERIFY(Profile::FirstRun);
}

void TestProfile::keepsADamagedFileBeside()
{
    const QString path = profilePath(QStringLiteral("d.cnf"));
    writeBytes(path, "precious");
    Profile profile(QStringLiteral("d.cnf"));
    QVERIFY(profile.save());
    QVERIFY(profile.save());
    QCOMPARE(bytesOf(path + QLatin1String(".bad")), QByteArray("precious"));
    QVERIFY(profile.load());
}

void TestProfile::savesForTheOwnerAloneOrNotAtAll()
{
    Profile profile;
    profile.setFileName(QStringLiteral("p"));
    QVERIFY(profile.save());
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup
        | QFileDevice::ReadOther | QFileDevice::WriteOther;
    QVERIFY(!(QFile::permissions(profile.fileName()) & others));

    profile.setFileName(QStringLiteral("missing folder/p"));
    QVERIFY(!profile.save());
    QVERIFY(!profile.remove());
}

void TestProfile::comparesAndCopiesWhatAnEditorChanges()
{
    Profile profile;
    profile.setFileName(QStringLiteral("one"));
    profile.users = QStringList{ QStringLiteral("u:p") };
    profile.useCount = 3;
    const std::unique_ptr<Profile> copy(profile.clone());
    QVERIFY(copy->equals(&profile));
    QCOMPARE(copy->fileName(), profile.fileName());
    QCOMPARE(copy->useCount, 0);

    copy->cleanExit = false;
    copy->lastPage = 4;
    QVERIFY(copy->equals(&profile));
    profile.apply(copy.get());
    QCOMPARE(profile.cleanExit, true);
    QCOMPARE(profile.lastPage, 0);
    QCOMPARE(profile.useCount, 3);

    copy->users.append(QStringLiteral("v:q"));
    QVERIFY(!copy->equals(&profile));
    copy->users.removeLast();
    copy->showImages = 1;
    QVERIFY(!copy->equals(&profile));
    QVERIFY(!copy->showsThumbnails());
}

void TestProfile::keepsFourRecentFiles()
{
    Profile profile;
    for (const char *path : { "/1", "/2", "/3", "/4", "/5", "/3" })
        profile.addRecentFile(QLatin1String(path));
    const QStringList expected{ QStringLiteral("/3"), QStringLiteral("/5"), QStringLiteral("/4"),
                                QStringLiteral("/2") };
    QCOMPARE(profile.recentFiles, expected);
}

void TestProfile::startsAndEndsWithTheGlobalProfile()
{
    Profile other;
    other.setFileName(QStringLiteral("other"));
    other.name = QStringLiteral("Other");
    QVERIFY(other.save());
    writeBytes(profilePath(QStringLiteral("note.txt")), "no profile");

    QVERIFY(closeProfiles());
    QCOMPARE(loadProfiles(), LastRun::EndedInOrder);
    QCOMPARE(Profile::confList.size(), 2);
    QCOMPARE(Profile::global()->name, QStringLiteral("Default"));
    QVERIFY(Profile::find(QStringLiteral("Other")));
    QVERIFY(!Profile::find(QStringLiteral("Nobody")));

    // A run that ends without closing leaves its mark.
    qDeleteAll(std::exchange(Profile::confList, {}));
    QCOMPARE(loadProfiles(), LastRun::Aborted);
}

QTEST_GUILESS_MAIN(TestProfile)
#include "tst_profile.moc"

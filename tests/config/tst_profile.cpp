#include "config/Permission.h"
#include "config/Profiles.h"
#include "tests/support/FullDisk.h"
#include "tests/support/LiveServer.h"

namespace {

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

bool isForItsOwner(const QString &path)
{
    const auto owners = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    return !(QFile::permissions(path) & ~owners);
}

} // namespace

class TestProfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { home = std::make_unique<TestHome>(); }
    void cleanup() { home.reset(); }

    void storesTheRecordInItsFixedOrder();
    void keepsAFileThatCantBeUsed();
    void noChangedByteOpensWhatIsProtected();
    void replacesAPortThatIsNone();
    void amendsOnlyWhatChanged();
    void comparesAndCopiesWhatAnEditorChanges();
    void admitsNobodyByANamelessAccount();
    void keepsMoreValuesAsText();
    void takesAllFilesToAnotherName();
    void keepsRightsOfAccounts();
    void saysInWordsWhatIsAllowed();
    void keepsHashesOutOfTheRecord();
    void tellsACrashFromANeighbour();

private:
    Profile *global() const { return home->profiles->global(); }

    std::unique_ptr<TestHome> home;
};

/// For its owner alone.
void TestProfile::storesTheRecordInItsFixedOrder()
{
    Profile profile(home->directories);
    profile.setFileName(QStringLiteral("work"));
    profile.users = QStringList{ QStringLiteral("u:p"), QString() };
    profile.recentFiles = QStringList{ QStringLiteral("/x") };
    profile.expertMode = true;
    profile.dataLimit = 77;
    profile.name = QStringLiteral("work");
    profile.privateKeyFile = QStringLiteral("/k");
    profile.publicKeyFile = QStringLiteral("/c");
    QVERIFY(profile.save());

    const QByteArray null = number(-1);
    const QByteArray expected = number(2) + stored("u:p") + null + number(1) + stored("/x")
        + number(8080) + number(0) + '\1' + number(2) + number(2) + number(2) + number(2)
        + number(0) + number(2) + number(0) + number(4) + number(77) + number(600) + stored("work")
        + null + null + null + stored("/k") + stored("/c") + null + '\1' + number(314);
    QCOMPARE(home->profileBytes(QStringLiteral("work.cnf")).toHex(), expected.toHex());
    QVERIFY(isForItsOwner(profile.fileName()));
    const Profile again(home->directories, QStringLiteral("work.cnf"));
    QVERIFY(again.isUsable() && again.equals(&profile));
    profile.setFileName(QStringLiteral("missing folder/p"));
    QVERIFY(!profile.save() && !profile.remove());
}

void TestProfile::keepsAFileThatCantBeUsed()
{
    global()->port = 99;
    QVERIFY(global()->save());
    const QByteArray whole = home->profileBytes(QStringLiteral("Global.conf"));
    const auto changed = [&whole](int at, char value) {
        QByteArray bytes = whole;
        bytes[at] = value;
        return bytes;
    };
    const int last = int(whole.size()) - 1;
    const QString file = QStringLiteral("work.cnf");
    const Profile defaults(home->directories);
    for (const QByteArray &bytes :
         { whole.left(last), whole + '\0', changed(last, '\0'), changed(15, '\7') /* TLS */,
           QByteArray(), QByteArray(4, '\xfe'), number(1) + QByteArray(4, '\x7e') }) {
        home->writeProfile(file, bytes);
        home->restart();
        Profile *work = home->profiles->find(QStringLiteral("work"));
        QVERIFY2(work && !work->isUsable(), bytes.toHex().constData());
        QCOMPARE(work->port, 8080);
        QCOMPARE(work->privateKeyFile, home->directories.resources + QLatin1String("server.key"));
        QVERIFY(work->amend([](Profile &profile) { profile.port = 1; }));
        QCOMPARE(home->profileBytes(file), bytes);

        // Who saves it has chosen these values.
        QVERIFY(work->save() && work->save());
        QVERIFY(work->isUsable() && work->load());
        QCOMPARE(home->profileBytes(file + QLatin1String(".bad")), bytes);
    }
    // The global profile is left alone too, by the beginning and the end of a run.
    home->writeProfile(QStringLiteral("Global.conf"), "precious");
    home->restart();
    QVERIFY(!global()->isUsable());
    home->restart();
    QCOMPARE(home->profileBytes(QStringLiteral("Global.conf")), QByteArray("precious"));

    QVERIFY(QDir(home->directories.profiles).mkdir(QStringLiteral("folder.cnf")));
    QCOMPARE(Profile(home->directories, QStringLiteral("folder.cnf")).fileState(),
             Profile::FileState::Unreadable);
    QCOMPARE(Profile(home->directories, QStringLiteral("none.cnf")).fileState(),
             Profile::FileState::Missing);
}

void TestProfile::noChangedByteOpensWhatIsProtected()
{
    const QString file = QStringLiteral("Global.conf");
    const QString sums = file + QLatin1String(".sum");
    const auto isUsable = [&](const QByteArray &bytes) {
        home->writeProfile(file, bytes);
        return Profile(home->directories, file).isUsable();
    };
    global()->authMode = AuthPasswordPage;
    global()->password = QStringLiteral("secret");
    QVERIFY(global()->save());
    const QByteArray whole = home->profileBytes(file);
    for (int i = 0; i < int(whole.size()); ++i) {
        QByteArray changed = whole;
        changed[i] = char(changed[i] ^ 1); // often a value that is valid too
        // How the last run ended is written by programs that know no sum, and opens nothing.
        const bool isCleanExit = i == whole.size() - 5;
        QVERIFY2(isUsable(changed) == isCleanExit, QByteArray::number(i).constData());
    }
    QVERIFY(isUsable(whole));

    // Broken off at any of its steps, a save leaves a file that can be used.
    global()->port = 99;
    {
        const FullDisk full(150); // enough for the sums
        QVERIFY(!global()->save());
    }
    const QByteArray both = home->profileBytes(sums);
    QVERIFY(isUsable(whole) && global()->save());
    const QByteArray next = home->profileBytes(file);
    QVERIFY(isUsable(next) && !isUsable(whole));
    home->writeProfile(sums, both);
    QVERIFY(isUsable(next) && isUsable(whole));

    QVERIFY(global()->remove() && home->profileBytes(sums).isEmpty());
    QVERIFY(isUsable(whole)); // from another machine
}

void TestProfile::replacesAPortThatIsNone()
{
    for (const qint32 port : { 0, -1, 65536, 1 << 24 }) {
        global()->port = port;
        QVERIFY(global()->save());
        const Profile again(home->directories, QStringLiteral("Global.conf"));
        QCOMPARE(again.port, 8080);
        QVERIFY(again.refusedPort() == port);
        QVERIFY(again.isUsable());
    }
}

void TestProfile::amendsOnlyWhatChanged()
{
    // A window and a console program of one user, the second one's password being new.
    Profile other(home->directories, QStringLiteral("Global.conf"));
    other.password = QStringLiteral("new");
    QVERIFY(other.save());
    QVERIFY(global()->amend([](Profile &profile) { profile.expertMode = true; }));
    QVERIFY(home->profiles->endInOrder());
    QVERIFY(other.load());
    QCOMPARE(other.password, QStringLiteral("new"));
    QVERIFY(other.expertMode && other.cleanExit && global()->expertMode);
}

void TestProfile::comparesAndCopiesWhatAnEditorChanges()
{
    Profile &profile = *global();
    profile.useCount = 3;
    const std::unique_ptr<Profile> copy = profile.clone();
    QCOMPARE(home->profiles->original(copy.get()), &profile);
    QCOMPARE(copy->useCount, 0);
    copy->cleanExit = true;
    copy->lastPage = 4;
    QVERIFY(copy->equals(&profile));
    profile.apply(copy.get());
    QVERIFY(!profile.cleanExit && profile.lastPage == 0 && profile.useCount == 3);
    copy->users.append(QStringLiteral("v:q"));
    QVERIFY(!copy->equals(&profile));
}

void TestProfile::admitsNobodyByANamelessAccount()
{
    global()->users = QStringLiteral("|:|:x|u:p|v:").split(QLatin1Char('|'));
    QCOMPARE(global()->accounts().join(QLatin1Char('|')), QStringLiteral("u:p|v:"));
}

/// Values that the profile file has no place for; people edit them, and other versions know more.
void TestProfile::keepsMoreValuesAsText()
{
    const QString file = QStringLiteral("work.cnf.ini");
    Profile work(home->directories);
    work.setFileName(QStringLiteral("work"));
    QVERIFY(work.save());
    QVERIFY(home->profileBytes(file).isEmpty()); // the defaults need none
    work.faceMode = FaceStandard;
    QVERIFY(work.save());
    QVERIFY(isForItsOwner(home->directories.profiles + file));

    const QString name = QStringLiteral("work.cnf");
    QCOMPARE(Profile(home->directories, name).faceMode, int(FaceStandard));
    home->writeProfile(file, "; mine\r\nnew=1\r\n mode=classic\n\nsync = folder");
    QVERIFY(work.load());
    QCOMPARE(work.faceMode, int(FaceClassic));
    QCOMPARE(work.syncPolicy, int(SyncFileAndFolder));
    QVERIFY(work.amend([](Profile &profile) { profile.faceMode = FaceAuto; }));
    QCOMPARE(home->profileBytes(file),
             QByteArray("; mine\r\nnew=1\r\nmode = auto\n\nsync = folder\n"));

    home->writeProfile(file,
                       "trusted-proxies = 127.0.0.1,::1\nnames = Nas.Example, ::1\n"
                       "path-prefix = /a%20b/\nannounce=yes\nannounce-name = a  = b \n");
    QVERIFY(work.load());
    QCOMPARE(work.trustedProxies.join(QLatin1Char('|')), QStringLiteral("127.0.0.1|::1"));
    QVERIFY(work.amend([](Profile &profile) { profile.trustedProxies.removeLast(); }));
    QCOMPARE(home->profileBytes(file),
             QByteArray("trusted-proxies = 127.0.0.1\nnames = nas.example, ::1\npath-prefix = "
                        "/a%20b\nannounce = yes\nannounce-name = a = b\n"));

    for (const QByteArray &bytes :
         { QByteArray("sync"), QByteArray("propfind-infinity = yes\n"),
           QByteArray("path-prefix = //evil\n"), QByteArray("sync = file\n\0", 13),
           QByteArray(2 << 20, '#') }) {
        home->writeProfile(file, bytes);
        const Profile damaged(home->directories, name);
        QVERIFY(damaged.isUsable() && damaged.faceMode == FaceAuto);
        QCOMPARE(damaged.textSetAside(), home->directories.profiles + file);
        QCOMPARE(home->profileBytes(file + QLatin1String(".bad")), bytes);
        QVERIFY(Profile(home->directories, name).textSetAside().isEmpty());
    }
    // Nothing is lost or opened while it can't be read; a folder can't be by anyone.
    const QByteArray whole = home->profileBytes(name);
    QVERIFY(QDir(home->directories.profiles).mkdir(file));
    Profile locked(home->directories, name);
    QCOMPARE(locked.fileState(), Profile::FileState::TextUnreadable);
    QCOMPARE(locked.fileInTheWay(), home->directories.profiles + file);
    locked.port = 81;
    QVERIFY(!locked.save() && !locked.isUsable());
    QCOMPARE(home->profileBytes(name), whole);
    QVERIFY(QDir(home->directories.profiles).rmdir(file));

    QVERIFY(work.remove());
    QVERIFY(!QFile::exists(home->directories.profiles + file));
}

void TestProfile::takesAllFilesToAnotherName()
{
    const QByteArray text = "; mine\nmode = standard\n";
    home->storeProfile(QStringLiteral("work"));
    home->writeProfile(QStringLiteral("work.cnf.ini"), text);
    home->restart();
    Profile *work = home->profiles->find(QStringLiteral("work"));
    const auto filesOf = [this](const char *name) {
        const QStringList all = QDir(home->directories.profiles).entryList(QDir::Files, QDir::Name);
        return all.filter(QLatin1String(name)).join(QLatin1Char(' '));
    };
    QVERIFY(QDir().mkpath(home->directories.profiles + QStringLiteral("no.cnf.ini")));
    QVERIFY(!home->profiles->rename(work, QStringLiteral("no")));
    QVERIFY(!home->profiles->duplicate(work, QStringLiteral("no")));
    QCOMPARE(work->name, QStringLiteral("work"));
    QVERIFY(filesOf("no.cnf").isEmpty());

    QVERIFY(home->profiles->rename(work, QStringLiteral("play")));
    QVERIFY(home->profiles->duplicate(work, QStringLiteral("rest")));
    QVERIFY(home->profiles->rename(global(), QStringLiteral("usual")));
    QVERIFY(filesOf("work").isEmpty());
    for (const char *name : { "play", "rest" }) {
        const QString file = QLatin1String(name) + QLatin1String(".cnf");
        QCOMPARE(filesOf(name), QStringLiteral("%1 %1.ini %1.sum").arg(file));
        QCOMPARE(home->profileBytes(file + QLatin1String(".ini")), text);
        const Profile stored(home->directories, file);
        QVERIFY(stored.isUsable() && stored.name == QLatin1String(name));
    }
    home->restart();
    QCOMPARE(global()->name, QStringLiteral("usual"));
    QCOMPARE(home->profiles->count(), 3);
}

void TestProfile::keepsRightsOfAccounts()
{
    const QString file = QStringLiteral("work.cnf.ini");
    const QString name = QStringLiteral("work.cnf");
    Profile work(home->directories);
    work.setFileName(QStringLiteral("work"));
    work.enableDelete = Qt::Unchecked;
    QVERIFY(work.save());
    QCOMPARE(rightsText(work.rightsOfEveryone()), QByteArray("see, read, add, change"));

    home->writeProfile(file,
                       "everyone = see\n# of the house\n"
                       "account.a%3D%25 b=all ; /b c\naccount.j\xc3\xbcrg = none\n");
    QVERIFY(work.load());
    QCOMPARE(rightsText(work.rightsOfEveryone()), QByteArray("see"));
    QVERIFY(work.letsSomebodyChange()); // the account may
    const AccountRights first = work.accountRights.value(QStringLiteral("a=% b"));
    QCOMPARE(rightsText(first.rights.value_or(Rights())), QByteArray("all"));
    QCOMPARE(first.home, QByteArray("/b c"));
    const std::unique_ptr<Profile> copy = work.clone();
    copy->accountRights.remove(QString::fromUtf8("j\xc3\xbcrg"));
    copy->accountRights.insert(QStringLiteral("x\ny"), { {}, "/x" });
    QVERIFY(!copy->equals(&work) && copy->save());
    QCOMPARE(home->profileBytes(file),
             QByteArray("everyone = see\n# of the house\n"
                        "account.a%3D%25%20b = all; /b%20c\naccount.x%0Ay = everyone; /x\n"));
    QVERIFY(work.load() && work.equals(copy.get()));

    // The defaults would open what these were to close.
    for (const char *wrong :
         { "everyone = red", "sync = x\neveryone = see", "mode = standrad", "strict = yess",
           "trusted-proxies = ::1, proxy", "names = a/b", "account. = see", "account.a",
           "account.a = see; home", "account.a =" }) {
        home->writeProfile(file, wrong);
        QVERIFY2(!work.load() && !work.isUsable(), wrong);
        QCOMPARE(home->profileBytes(file), QByteArray(wrong));
    }
    QVERIFY(!work.save());
    QCOMPARE(home->profileBytes(file), QByteArray("account.a ="));
    QVERIFY(QFile::remove(home->directories.profiles + file));
    QVERIFY(work.load() && work.save() && Profile(home->directories, name).isUsable());
}

void TestProfile::saysInWordsWhatIsAllowed()
{
    ProfileValues values;
    QCOMPARE(permissionOf(values), Permission::ChangeEverything);
    values.enableDelete = 0; // of the classic answers alone some methods keep to it
    QCOMPARE(permissionOf(values), Permission::AsSet);
    for (const int mode : { FaceClassic, FaceAuto, FaceStandard }) {
        for (const auto wanted : { Permission::Look, Permission::AddOnly, Permission::LookAndAdd,
                                   Permission::ChangeEverything }) {
            values.faceMode = mode;
            permit(wanted, &values);
            QCOMPARE(permissionOf(values), wanted);
            // Else classic answers would refuse everybody.
            QVERIFY(values.faceMode == FaceStandard
                    || values.rightsOfEveryone() == values.switchedRights());
        }
    }
    values.everyone = Right::See;
    QCOMPARE(permissionOf(values), Permission::AsSet);
    permit(Permission::Look, &values);
    values.accountRights.insert(QStringLiteral("anna"), {});
    QCOMPARE(permissionOf(values), Permission::AsSet);
}

void TestProfile::keepsHashesOutOfTheRecord()
{
    const QString file = QStringLiteral("work.cnf");
    const QString textFile = file + QLatin1String(".ini");
    const QByteArray hash = "$argon2id$v=19$m=8,t=1,p=1$AA$BB";
    Profile work(home->directories);
    work.setFileName(QStringLiteral("work"));
    work.authMode = AuthBasic;
    work.users = QStringList{ QStringLiteral("a:old"), QStringLiteral("b:2") };
    QVERIFY(work.save());
    const QByteArray lines = "password.a = " + hash + "\npassword.c = " + hash + '\n';
    home->writeProfile(textFile, lines);
    QVERIFY(work.load());
    QCOMPARE(work.accounts().join(QLatin1Char('|')), QStringLiteral("b:2"));
    QCOMPARE(work.passwordHash(QStringLiteral("a")), hash);
    QVERIFY(work.passwordHash(QStringLiteral("b")).isEmpty() && work.hashesPasswords());
    QVERIFY(work.save());
    const QByteArray record = home->profileBytes(file);
    QVERIFY(record.contains(stored("b:2")) && !record.contains(stored("a:old")));
    QVERIFY(!record.contains(stored(("a:" + hash).constData()))
            && !record.contains(stored(("c:" + hash).constData())));
    QCOMPARE(home->profileBytes(textFile), lines);
    work.users.removeLast(); // c
    QVERIFY(work.save());
    QCOMPARE(home->profileBytes(textFile), lines.left(lines.indexOf('\n') + 1));

    // The record must not say that there is no password when the text is lost.
    work.authMode = AuthPasswordPage;
    QVERIFY(work.save());
    home->writeProfile(textFile, "login-password = " + hash);
    QVERIFY(work.load() && work.passwordHash({}) == hash && work.save());
    home->writeProfile(textFile, {});
    QVERIFY(work.load() && work.passwordHash({}) == hash);
    for (const char *wrong :
         { "password.a = x", "password.a:b = $argon2id$", "login-password = x" }) {
        home->writeProfile(textFile, wrong);
        QVERIFY2(!work.load(), wrong);
    }
}

void TestProfile::tellsACrashFromANeighbour()
{
    const auto endsClean = [this](bool inOrder) {
        if (inOrder)
            home->profiles->endInOrder();
        home->profiles.reset();
        const bool clean = Profile(home->directories, QStringLiteral("Global.conf")).cleanExit;
        home->begin();
        return clean;
    };
    QVERIFY(endsClean(true) && !endsClean(false));

    const QString marks = home->directories.profiles + QLatin1String("running");
    auto neighbour = std::make_unique<RunningMark>(marks);
    QVERIFY(!endsClean(true));
    neighbour.reset();

    home->writeProfile(QStringLiteral("running/1-x"), {}); // left by a process that is dead
    QVERIFY(endsClean(true) && !QFile::exists(marks + QLatin1String("/1-x")));
}

QTEST_GUILESS_MAIN(TestProfile)
#include "tst_profile.moc"

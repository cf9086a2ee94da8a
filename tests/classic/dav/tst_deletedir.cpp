#include "classic/dav/DeleteDir.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

class TestDeleteDir : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { QCOMPARE(::seteuid(::getuid()), 0); }

    void removesEverythingAndCounts();
    void neverFollowsLinks();
    void keepsGoingPastFailures();
    void leavesAloneWhatIsNoFolder();
    void deepAndWideTree();

private:
    QString at(const char *name) const { return dir->filePath(QLatin1String(name)); }
    bool isThere(const char *name) const { return QFile::exists(at(name)); }
    void makeFile(const char *name) const { QVERIFY(QFile(at(name)).open(QIODevice::WriteOnly)); }

    std::unique_ptr<QTemporaryDir> dir;
};

/// Root may remove everything, so a test that is run by root steps down.
void TestDeleteDir::init()
{
    constexpr uid_t nobody = 65534;
    dir.reset();
    if (::geteuid() == 0)
        QCOMPARE(::seteuid(nobody), 0);
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(at("top/a/b")) && QDir().mkpath(at("outside")));
    for (const char *name : { "outside/kept", "top/a/file", "top/.hidden" })
        makeFile(name);
}

void TestDeleteDir::removesEverythingAndCounts()
{
    QCOMPARE(::mkfifo(QFile::encodeName(at("top/pipe")).constData(), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("nowhere"), at("top/broken")));
    // A name that is no UTF-8: other systems leave such names on memory cards.
    const QByteArray latin1 = QFile::encodeName(at("top/")) + "na\xefve";
    QCOMPARE(::mkdir(latin1.constData(), 0700), 0);

    DeleteDir tree(at("top/"));
    QVERIFY(tree.deleteDir());
    QCOMPARE(tree.getDeleted(), 7);
    QVERIFY(!isThere("top"));
    QVERIFY2(tree.deleteDir(), "a folder that is gone already is a success");
}

void TestDeleteDir::neverFollowsLinks()
{
    QVERIFY(QFile::link(at("outside"), at("top/a/link")));
    QVERIFY(DeleteDir(at("top")).deleteDir());
    QVERIFY(!isThere("top"));
    // A slash or dot behind its name would look through the link.
    for (const char *name : { "link", "link/", "link/." }) {
        QVERIFY(QFile::link(at("outside"), at("link")));
        QVERIFY(DeleteDir(at(name)).deleteDir());
        QVERIFY2(!QFileInfo(at("link")).isSymLink(), name);
    }
    QVERIFY(isThere("outside/kept"));
}

void TestDeleteDir::keepsGoingPastFailures()
{
    const QFile::Permissions locked = QFile::ReadOwner | QFile::ExeOwner;
    QVERIFY(QFile::setPermissions(at("top/a"), locked));
    QVERIFY(!DeleteDir(at("top")).deleteDir());
    QVERIFY(isThere("top/a/file") && !isThere("top/.hidden"));
    QVERIFY(QFile::setPermissions(at("top/a"), locked | QFile::WriteOwner));
}

void TestDeleteDir::leavesAloneWhatIsNoFolder()
{
    for (const QString &path : { at("outside/kept"), at("outside") + QChar::Null, QString() }) {
        QVERIFY(DeleteDir(path).deleteDir());
        QVERIFY2(isThere("outside/kept"), qPrintable(path));
    }
}

/// The depth is the choice of whoever may make folders.
void TestDeleteDir::deepAndWideTree()
{
    QVERIFY(QDir().mkpath(at("top") + QStringLiteral("/d").repeated(1000)));
    for (int i = 0; i < 200; ++i)
        makeFile(("top/a/b/" + QByteArray::number(i)).constData());
    QVERIFY(DeleteDir(at("top")).deleteDir());
    QVERIFY(!isThere("top"));
}

QTEST_GUILESS_MAIN(TestDeleteDir)

#include "tst_deletedir.moc"

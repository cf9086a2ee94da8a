#include "classic/pages/FolderListing.h"

#include "server/SessionTable.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

class TestFolderListing : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void listsLikeQDir_data();
    void listsLikeQDir();
    void unreadableEntries();

private:
    void addFile(const char *name, int size, qint64 time) const;
    QByteArray rawName() const { return QFile::encodeName(dir.path()) + "/\xff\xfe"; }

    QTemporaryDir dir;
};

namespace {

constexpr QDir::Filters browsable =
    QDir::Files | QDir::AllDirs | QDir::Readable | QDir::NoDotAndDotDot;

QStringList names(const FolderListing &listing)
{
    QStringList all;
    for (qint64 i = 0; i < listing.count(); ++i) {
        const auto entry = listing.entry(i);
        all.append(entry ? entry->info.fileName() : QStringLiteral("(none)"));
    }
    return all;
}

} // namespace

void TestFolderListing::addFile(const char *name, int size, qint64 time) const
{
    QFile file(dir.filePath(QString::fromUtf8(name)));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    file.write(QByteArray(size, 'x'));
    QVERIFY(
        file.setFileTime(QDateTime::fromMSecsSinceEpoch(time), QFileDevice::FileModificationTime));
}

void TestFolderListing::initTestCase()
{
    constexpr qint64 time = 1600000000000;
    addFile("b.txt", 20, time);
    addFile("B.txt", 20, time + 1);
    addFile("a.txt", 5000, time - 1);
    addFile(".hidden", 3, time + 5000);
    addFile("10", 0, time);
    addFile("9", 1, time);
    addFile("\xc3\xa9t\xc3\xa9", 20, time);
    addFile("\xf0\x9f\x93\xb7", 20, time); // sorts by its UTF-16 form,
    addFile("\xef\xac\x81", 20, time); // before this one
    addFile("line\nfeed \"<&>", 7, time);
    for (const char *folder : { "zoo/inner", ".dots", "Folder" })
        QVERIFY(QDir(dir.path()).mkpath(QLatin1String(folder)));
    const auto link = [this](const char *target, const char *name) {
        QVERIFY(QFile::link(QLatin1String(target), dir.filePath(QLatin1String(name))));
    };
    link("zoo", "link to folder");
    link(".", "loop");
    link("a.txt", "link to file");
    link("nowhere", "broken link");
    const QByteArray pipe = QFile::encodeName(dir.filePath(QStringLiteral("pipe.jpg")));
    QVERIFY(::mkfifo(pipe.constData(), 0600) == 0);
    // A name that is no UTF-8 can't be linked to, so it is not shown.
    QVERIFY(::mkdir(rawName().constData(), 0700) == 0);
}

void TestFolderListing::cleanupTestCase()
{
    ::rmdir(rawName().constData());
}

void TestFolderListing::listsLikeQDir_data()
{
    QTest::addColumn<int>("filter");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("flags");
    const std::pair<const char *, QDir::Filters> filters[] = {
        { "files", QDir::Files },
        { "files and hidden ones", QDir::Files | QDir::Hidden },
        { "all but hidden", browsable },
        { "all", browsable | QDir::Hidden },
    };
    for (const auto &[name, filter] : filters) {
        QTest::addRow("%s by name", name)
            << int(filter) << int(SessionData::ByName) << int(QDir::Name);
        QTest::addRow("%s by time", name)
            << int(filter) << int(SessionData::ByTime) << int(QDir::Time);
        QTest::addRow("%s by size", name)
            << int(filter) << int(SessionData::BySize) << int(QDir::Size);
    }
}

void TestFolderListing::listsLikeQDir()
{
    QFETCH(int, filter);
    QFETCH(int, mode);
    QFETCH(int, flags);
    const auto filters = QDir::Filters(QFlag(filter));
    const auto sorting = QDir::SortFlags(QFlag(flags | QDir::DirsFirst));
    const QStringList expected = QDir(dir.path()).entryList(filters, sorting);
    QVERIFY(expected.size() > 8);
    QCOMPARE(names(FolderListing(dir.path(), filters, mode)), expected);
}

void TestFolderListing::unreadableEntries()
{
    const QTemporaryDir other;
    QFile file(other.filePath(QStringLiteral("secret")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.setPermissions(QFileDevice::Permissions()));

    // The superuser may read everything, so for a moment this is somebody else.
    const bool superuser = ::getuid() == 0;
    QVERIFY(!superuser || ::setreuid(65534, 0) == 0);
    const FolderListing all(other.path(), browsable, SessionData::ByName);
    const FolderListing files(other.path(), QDir::Files, SessionData::ByName);
    const QStringList fileNames = names(files);
    QVERIFY(!superuser || ::setreuid(0, 0) == 0);

    QCOMPARE(all.count(), 0);
    QCOMPARE(FolderListing(file.fileName(), browsable, SessionData::ByName).count(), 0);
    QCOMPARE(fileNames, QStringList(QStringLiteral("(none)")));
}

QTEST_GUILESS_MAIN(TestFolderListing)
#include "tst_folderlisting.moc"

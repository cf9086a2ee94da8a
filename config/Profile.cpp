#include "config/Profile.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QSaveFile>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <tuple>
#include <utility>

QString Profile::ConfigDir;
QString Profile::ResDir;
QByteArray Profile::IconDir;
QString Profile::LangPath;
QList<Profile *> Profile::confList;
bool Profile::FirstRun = false;
bool Profile::RootMode = false;

namespace {

constexpr qint32 formatMark = 314;
constexpr auto globalFile = "Global.conf";
constexpr auto profileSuffix = ".cnf";

/// The values in the order of the file. Reading, writing and comparing all go through it.
template <typename Values> auto inFileOrder(Values &v)
{
    return std::tie(v.users, v.recentFiles, v.port, v.sslMode, v.expertMode, v.showFolders,
                    v.showImages, v.enableDelete, v.enableUpload, v.authMode, v.warningMode,
                    v.dnsEnabled, v.maxConnections, v.dataLimit, v.sessionLifetime, v.name,
                    v.password, v.dnsUser, v.dnsPassword, v.privateKeyFile, v.publicKeyFile,
                    v.keyPassword);
}

template <typename T> void readItem(QDataStream &in, T &item)
{
    in >> item;
}

/// Not the stream's own operator: that one reserves memory for whatever count a broken file names.
void readItem(QDataStream &in, QStringList &list)
{
    quint32 count = 0;
    in >> count;
    list.clear();
    for (quint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        QString item;
        in >> item;
        list.append(item);
    }
}

struct StoredProfile
{
    ProfileValues values;
    bool cleanExit = true;
};

/// Reads a whole record; false when it is cut short or the mark at its end is another.
bool readRecord(QIODevice &device, StoredProfile &record)
{
    QDataStream in(&device);
    in.setVersion(QDataStream::Qt_5_15);
    std::apply([&in](auto &...item) { (readItem(in, item), ...); }, inFileOrder(record.values));

    qint32 mark = 0;
    in >> record.cleanExit >> mark;
    return in.status() == QDataStream::Ok && mark == formatMark;
}

void writeRecord(QIODevice &device, const ProfileValues &values, bool cleanExit)
{
    QDataStream out(&device);
    out.setVersion(QDataStream::Qt_5_15);
    std::apply([&out](const auto &...item) { (out << ... << item); }, inFileOrder(values));
    out << cleanExit << formatMark;
}

QString withSlash(const QString &folder)
{
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

} // namespace

Profile::Profile()
{
    resetKeys();
}

Profile::Profile(const QString &fileName)
{
    load(ConfigDir + fileName);
}

bool Profile::load()
{
    return load(m_fileName);
}

bool Profile::load(const QString &path)
{
    m_fileName = path;
    QFile file(path);
    StoredProfile record;
    if (file.open(QIODevice::ReadOnly) && readRecord(file, record)) {
        static_cast<ProfileValues &>(*this) = record.values;
        cleanExit = record.cleanExit;
        damaged = false;
        return true;
    }
    damaged = file.exists();
    initValues();
    FirstRun = true;
    return false;
}

bool Profile::save()
{
    if (!keepDamagedFile())
        return false;

    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // Passwords stand in the file as they are.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    writeRecord(file, *this, cleanExit);
    return file.commit();
}

bool Profile::keepDamagedFile()
{
    if (!damaged || !QFile::exists(m_fileName))
        return true;

    const QString kept = m_fileName + QLatin1String(".bad");
    if (QFile::exists(kept) && !QFile::remove(kept))
        return false;
    if (!QFile::rename(m_fileName, kept))
        return false;
    damaged = false;
    return true;
}

void Profile::setFileName(const QString &profileName)
{
    m_fileName = ConfigDir + profileName + QLatin1String(profileSuffix);
    damaged = false;
}

bool Profile::remove()
{
    return QFile::remove(m_fileName);
}

Profile *Profile::clone() const
{
    auto *copy = new Profile;
    copy->apply(this);
    return copy;
}

void Profile::apply(const Profile *other)
{
    static_cast<ProfileValues &>(*this) = *other;
    info = other->info;
    m_fileName = other->m_fileName;
}

bool Profile::equals(const Profile *other) const
{
    const ProfileValues &mine = *this;
    const ProfileValues &others = *other;
    return inFileOrder(mine) == inFileOrder(others);
}

void Profile::initValues()
{
    static_cast<ProfileValues &>(*this) = ProfileValues();
    cleanExit = true;
    lastPage = 0;
    resetKeys();
}

void Profile::resetKeys()
{
    privateKeyFile = ResDir + QLatin1String("server.key");
    publicKeyFile = ResDir + QLatin1String("server.crt");
    keyPassword.clear();
}

void Profile::addRecentFile(const QString &path)
{
    recentFiles.removeAll(path);
    recentFiles.prepend(path);
    while (recentFiles.size() > maxRecentFiles)
        recentFiles.removeLast();
}

Profile *Profile::global()
{
    return confList.first();
}

Profile *Profile::find(const QString &profileName)
{
    for (Profile *profile : std::as_const(confList)) {
        if (profile->name == profileName)
            return profile;
    }
    return nullptr;
}

void useUtf8Names()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // The next toolkit knows no other encoding.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
}

bool setUpDirectories()
{
    Profile::ConfigDir = QDir::homePath() + QLatin1String("/.quillon/");

    const QString given = qEnvironmentVariable("QUILLON_RESDIR");
    const QString resources = given.isEmpty() ? QStringLiteral("/opt/quillon") : given;
    Profile::ResDir = withSlash(QDir(resources).absolutePath());
    Profile::IconDir = (Profile::ResDir + QLatin1String("img/")).toUtf8();

    const QString languages = Profile::ResDir + QLatin1String("lang/");
    const QString own = languages + QLocale::system().name();
    Profile::LangPath =
        QFileInfo::exists(own) ? own + QLatin1Char('/') : languages + QLatin1String("C/");

    return QDir().mkpath(Profile::ConfigDir);
}

LastRun loadProfiles()
{
    auto *global = new Profile(QLatin1String(globalFile));
    LastRun lastRun = LastRun::Aborted;
    if (global->cleanExit) {
        lastRun = LastRun::EndedInOrder;
        global->cleanExit = false;
        global->save();
    }
    if (global->name.isEmpty())
        global->name = QCoreApplication::translate("Profile", "Default");
    Profile::confList.append(global);

    const QStringList others = QDir(Profile::ConfigDir)
                                   .entryList({ QLatin1Char('*') + QLatin1String(profileSuffix) },
                                              QDir::Files | QDir::CaseSensitive, QDir::Name);
    for (const QString &fileName : others)
        Profile::confList.append(new Profile(fileName));
    return lastRun;
}

bool closeProfiles()
{
    Profile *global = Profile::global();
    global->cleanExit = true;
    const bool saved = global->save();
    qDeleteAll(Profile::confList);
    Profile::confList.clear();
    return saved;
}

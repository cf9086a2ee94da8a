#include "config/Profile.h"

#include "config/Log.h"
#include "config/ProfileFile.h"
#include "config/ProfileText.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace {

constexpr qint32 formatMark = 314;

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

/// Whether all that can only be one of a few values is. A changed byte must not switch off what
/// protects, and a file from elsewhere comes without a checksum.
bool isPlausible(const ProfileValues &v)
{
    const std::array checkStates = { v.sslMode,      v.showFolders, v.showImages, v.enableDelete,
                                     v.enableUpload, v.warningMode, v.dnsEnabled };
    return v.authMode >= AuthNone && v.authMode <= AuthBasic
        && std::all_of(checkStates.begin(), checkStates.end(),
                       [](qint32 state) { return state >= 0 && state <= Qt::Checked; });
}

/// Reads a whole record; false when it is cut short, the mark at its end is another, or more
/// follows.
bool readRecord(const QByteArray &content, StoredProfile &record)
{
    QDataStream in(content);
    in.setVersion(QDataStream::Qt_5_15);
    std::apply([&in](auto &...item) { (readItem(in, item), ...); }, inFileOrder(record.values));

    qint32 mark = 0;
    in >> record.cleanExit >> mark;
    return in.status() == QDataStream::Ok && mark == formatMark && in.atEnd()
        && isPlausible(record.values);
}

QByteArray toRecord(const ProfileValues &values, bool cleanExit)
{
    QByteArray content;
    QDataStream out(&content, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_5_15);
    std::apply([&out](const auto &...item) { (out << ... << item); }, inFileOrder(values));
    out << cleanExit << formatMark;
    return content;
}

bool hasHash(const QString &account)
{
    return isPasswordHash(accountPassword(account));
}

/// Programs that know no hashes would take one for the password.
ProfileValues withReadableAccounts(ProfileValues values)
{
    QStringList &users = values.users;
    users.erase(std::remove_if(users.begin(), users.end(), hasHash), users.end());
    return values;
}

/// Without links, and with a slash at its end; empty when there is no such folder.
QString realFolder(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() || real.endsWith(QLatin1Char('/')) ? real : real + QLatin1Char('/');
}

} // namespace

Profile::Profile(Directories where)
    : m_directories(std::move(where))
{
    resetKeys();
}

Profile::Profile(const Directories &where, const QString &fileName)
    : m_directories(where)
    , m_fileName(where.profiles + fileName)
{
    load();
}

bool Profile::load()
{
    static_cast<ProfileValues &>(*this) = ProfileValues();
    cleanExit = true;
    lastPage = 0;
    m_refusedPort.reset();
    resetKeys();
    const ProfileLock lock(m_fileName);
    m_fileState = read();
    readTextFile();
    if (!isUsable())
        qCDebug(configLog) << "can't be used:" << m_fileName;
    return m_fileState == FileState::Fine;
}

Profile::FileState Profile::read()
{
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly))
        return isMissing(m_fileName) ? FileState::Missing : FileState::Unreadable;
    const QByteArray content = file.readAll();
    StoredProfile record;
    if (!fitsItsSum(m_fileName, content) || !readRecord(content, record))
        return FileState::Damaged;

    if (!isPort(record.values.port))
        m_refusedPort = std::exchange(record.values.port, ProfileValues().port);
    static_cast<ProfileValues &>(*this) = record.values;
    cleanExit = record.cleanExit;
    return FileState::Fine;
}

void Profile::readTextFile()
{
    m_textSetAside.clear();
    const QString textFile = textFileOf(m_fileName);
    const TextState state = readText(textFile, this);
    if (state == TextState::Damaged && setAside(textFile))
        m_textSetAside = textFile;
    else if (state != TextState::Fine && isUsable())
        m_fileState = FileState::TextUnreadable;
}

QString Profile::fileInTheWay() const
{
    return m_fileState == FileState::TextUnreadable ? textFileOf(m_fileName) : m_fileName;
}

bool Profile::isUsable() const
{
    return m_fileState == FileState::Missing || m_fileState == FileState::Fine;
}

bool Profile::save()
{
    if (m_fileState == FileState::TextUnreadable)
        return false;
    const ProfileLock lock(m_fileName);
    const bool inTheWay = !isUsable() && !isMissing(m_fileName);
    if (inTheWay && !setAside(m_fileName))
        return false;
    if (!writeWithSum(m_fileName, toRecord(withReadableAccounts(*this), cleanExit))
        || !writeText(textFileOf(m_fileName), *this))
        return false;
    m_fileState = FileState::Fine;
    return true;
}

bool Profile::amend(const std::function<void(Profile &)> &change)
{
    change(*this);
    if (!isUsable())
        return true;
    Profile stored(m_directories);
    stored.m_fileName = m_fileName;
    stored.load();
    if (stored.m_fileState == FileState::Missing)
        return save();
    if (!stored.isUsable())
        return false;
    change(stored);
    return stored.save();
}

void Profile::setFileName(const QString &profileName)
{
    m_fileName = m_directories.profiles + profileName + QLatin1String(fileSuffix);
    m_fileState = FileState::Missing;
}

bool Profile::remove()
{
    const ProfileLock lock(m_fileName);
    const QString textFile = textFileOf(m_fileName);
    return removeWithSum(m_fileName) && (isMissing(textFile) || QFile::remove(textFile));
}

std::unique_ptr<Profile> Profile::clone() const
{
    auto copy = std::make_unique<Profile>(m_directories);
    copy->apply(this);
    return copy;
}

void Profile::apply(const Profile *other)
{
    static_cast<ProfileValues &>(*this) = *other;
    m_fileName = other->m_fileName;
}

bool Profile::equals(const Profile *other) const
{
    const ProfileValues &mine = *this;
    const ProfileValues &others = *other;
    return inFileOrder(mine) == inFileOrder(others) && equalText(mine, others);
}

Rights ProfileValues::switchedRights() const
{
    Rights rights = Right::See | Right::Read;
    if (enableUpload == Qt::Checked)
        rights |= Right::Add | Right::Change;
    if (enableDelete == Qt::Checked)
        rights |= Right::Delete;
    return rights;
}

bool ProfileValues::letsSomebodyChange() const
{
    const auto changes = [](Rights rights) { return (rights & changingRights) != Rights(); };
    return changes(rightsOfEveryone())
        || std::any_of(accountRights.begin(), accountRights.end(),
                       [&changes](const AccountRights &account) {
                           return changes(account.rights.value_or(Rights()));
                       });
}

bool Profile::opensHome(const QString &path) const
{
    // The switches leave some changes to classic answers.
    const bool isOpen =
        (!statesRights() && !isStrict()) || (rightsOfEveryone() & changingRights) != Rights();
    if (!admitsEveryone() || !isOpen)
        return false;
    const QString shared = realFolder(path);
    return !shared.isEmpty()
        && (shared == realFolder(QDir::homePath())
            || realFolder(m_directories.profiles).startsWith(shared));
}

void Profile::resetKeys()
{
    privateKeyFile = m_directories.resources + QLatin1String("server.key");
    publicKeyFile = m_directories.resources + QLatin1String("server.crt");
    keyPassword.clear();
}

void Profile::addRecentFile(const QString &path)
{
    recentFiles.removeAll(path);
    recentFiles.prepend(path);
    while (recentFiles.size() > maxRecentFiles)
        recentFiles.removeLast();
}

QStringList ProfileValues::accounts() const
{
    QStringList usable = users;
    usable.erase(std::remove_if(usable.begin(), usable.end(),
                                [](const QString &account) {
                                    return accountName(account).isEmpty() || hasHash(account);
                                }),
                 usable.end());
    return usable;
}

QByteArray ProfileValues::passwordHash(const QString &user) const
{
    if (authMode == AuthPasswordPage)
        return isPasswordHash(password) ? password.toUtf8() : QByteArray();
    const auto found = std::find_if(users.begin(), users.end(), [&user](const QString &account) {
        return hasHash(account) && accountName(account) == user;
    });
    return found == users.end() || authMode != AuthBasic ? QByteArray()
                                                         : accountPassword(*found).toUtf8();
}

bool ProfileValues::hashesPasswords() const
{
    return authMode == AuthBasic && std::any_of(users.begin(), users.end(), hasHash);
}

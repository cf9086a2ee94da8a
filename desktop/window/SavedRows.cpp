#include "desktop/window/SavedRows.h"

#include "config/Profile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cctype>
#include <iterator>

namespace {

const QLatin1String countKey("len");
const QLatin1String removedKey("removed"); ///< read by no older program
const QLatin1String portKey("port");
const QLatin1String fileKey("file");
const QLatin1String profileKey("cnf");
const QLatin1String addressKey("address");

bool isText(const QByteArray &content)
{
    const bool hasControls = std::any_of(content.begin(), content.end(), [](char byte) {
        return std::iscntrl(static_cast<unsigned char>(byte)) && byte != '\t' && byte != '\r'
            && byte != '\n';
    });
    return !hasControls && QString::fromUtf8(content).toUtf8() == content;
}

/// Whether the file has what was ever written together: whole lines, and every row with its port,
/// or what it shares while it had no address. A file of simple mode counts no rows and has one.
bool isWhole(const QSettings &settings)
{
    QFile file(settings.fileName());
    if (!file.open(QIODevice::ReadOnly))
        return !file.exists();
    const QByteArray content = file.readAll();
    if (settings.status() != QSettings::NoError || !content.endsWith('\n') || !isText(content))
        return false;
    const int rows = settings.value(countKey, 1).toInt();
    for (int index = 0; index < std::min(rows, SavedRows::maxRows); ++index) {
        const QString row = QString::number(index) + QLatin1Char('/');
        if (!settings.contains(row + portKey) && !settings.contains(row + fileKey))
            return false;
    }
    return true;
}

/// Where the damaged file is kept: a copy, or itself when there can be none.
QString keptCopy(const QString &fileName)
{
    QString kept = fileName + QLatin1String(".bad");
    // An empty one is left of a file that was damaged before, until rows are saved.
    if (QFileInfo(fileName).size() == 0 && QFile::exists(kept))
        return kept;
    QFile::remove(kept);
    return QFile::copy(fileName, kept) ? kept : fileName;
}

} // namespace

SavedRow SavedRow::read(QSettings *settings, int index)
{
    settings->beginGroup(QString::number(index));
    SavedRow row;
    const int port = settings->value(portKey).toInt();
    row.portDamaged = settings->contains(portKey) && !isPort(port);
    row.port = row.portDamaged ? 0 : port;
    row.file = settings->value(fileKey).toString();
    row.profile = settings->value(profileKey).toString();
    row.address = settings->value(addressKey).toString();
    row.addedPort = !row.address.isEmpty();
    settings->endGroup();
    return row;
}

void SavedRow::write(QSettings *settings, int index) const
{
    settings->beginGroup(QString::number(index));
    if (port > 0)
        settings->setValue(portKey, port);
    else
        settings->remove(portKey);
    settings->setValue(fileKey, file);
    settings->setValue(profileKey, formerProfile.isEmpty() ? profile : formerProfile);
    // Other rows are found by their index alone.
    if (addedPort)
        settings->setValue(addressKey, address);
    else
        settings->remove(addressKey);
    settings->endGroup();
}

bool SavedRow::renameProfile(const QString &from, const QString &to)
{
    bool ranWithIt = false;
    for (QString *name : { &profile, &formerProfile }) {
        if (*name != from)
            continue;
        *name = to;
        ranWithIt = true;
    }
    return ranWithIt;
}

SavedRows::SavedRows(const QString &fileName)
    : file(fileName, QSettings::IniFormat)
{
    if (!isWhole(file)) {
        damaged = keptCopy(fileName);
        if (damaged != fileName)
            file.clear();
        return;
    }
    int groups = 0;
    for (const QString &group : file.childGroups())
        groups = std::max(groups, group.toInt() + 1);
    for (int index = 0; index < std::min(groups, maxRows); ++index)
        stored.append(SavedRow::read(&file, index));
    counted = std::clamp(file.value(countKey).toInt(), 0, maxRows);
}

int SavedRows::indexOf(int nth) const
{
    int index = 0;
    for (int passed = 0; index < maxRows; ++index) {
        if (!row(index).addedPort && passed++ == nth)
            break;
    }
    return index;
}

QList<int> SavedRows::addedPorts(const QString &address) const
{
    QList<int> groups;
    for (int index = 0; index < counted; ++index) {
        const SavedRow saved = row(index);
        if (saved.addedPort && saved.address == address && saved.port > 0)
            groups.append(index);
    }
    return groups;
}

QStringList SavedRows::removed() const
{
    return damaged.isEmpty() ? file.value(removedKey).toStringList() : QStringList();
}

void SavedRows::setRemoved(const QStringList &addresses)
{
    if (addresses.isEmpty())
        file.remove(removedKey);
    else
        file.setValue(removedKey, addresses);
}

void SavedRows::remove(int group)
{
    if (group < int(stored.size()))
        stored.removeAt(group);
    if (group < counted)
        --counted;
}

QList<SavedRow> SavedRows::take(const QString &address)
{
    const auto other = [&address](const SavedRow &row) { return row.address != address; };
    const auto first = std::stable_partition(gone.begin(), gone.end(), other);
    QList<SavedRow> taken;
    std::move(first, gone.end(), std::back_inserter(taken));
    gone.erase(first, gone.end());
    return taken;
}

void SavedRows::renameProfile(const QString &from, const QString &to)
{
    for (SavedRow &row : gone)
        row.renameProfile(from, to);
    // Those of addresses that were not there in this run stand in the file alone.
    for (int group = 0; group < int(stored.size()); ++group) {
        if (stored[group].renameProfile(from, to))
            file.setValue(QString::number(group) + QLatin1Char('/') + profileKey, to);
    }
}

void SavedRows::forgetRunning()
{
    for (SavedRow &row : gone)
        row.running = row.restsAlone = false;
}

void SavedRows::writeRest(int rows)
{
    for (const SavedRow &row : std::as_const(gone))
        row.write(&file, rows++);
    file.setValue(countKey, rows);
    const QStringList groups = file.childGroups();
    for (const QString &group : groups) {
        bool isRow = false;
        const int index = group.toInt(&isRow);
        if (!isRow || index < rows)
            continue;
        if (index < int(stored.size()))
            stored.at(index).write(&file, index);
        else
            file.remove(group);
    }
}

bool SavedRows::flush()
{
    file.sync();
    return file.status() != QSettings::AccessError;
}

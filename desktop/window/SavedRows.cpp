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

bool isAddress(const SavedRow &row)
{
    return !row.addedPort;
}

/// Moves what is of `address` out of `rows`.
QList<SavedRow> takeOf(const QString &address, QList<SavedRow> *rows)
{
    const auto other = [&address](const SavedRow &row) { return row.address != address; };
    const auto first = std::stable_partition(rows->begin(), rows->end(), other);
    QList<SavedRow> taken;
    std::move(first, rows->end(), std::back_inserter(taken));
    rows->erase(first, rows->end());
    return taken;
}

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
    const int counted = file.value(countKey).toInt();
    for (int index = 0; index < std::min(groups, maxRows); ++index) {
        const SavedRow row = SavedRow::read(&file, index);
        if (isAddress(row) || (index < counted && row.port > 0))
            stored.append(row);
    }
}

SavedRow SavedRows::next() const
{
    const auto found = std::find_if(stored.begin(), stored.end(), isAddress);
    return found == stored.end() ? SavedRow() : *found;
}

SavedRow SavedRows::takeNext()
{
    const auto found = std::find_if(stored.begin(), stored.end(), isAddress);
    if (found == stored.end())
        return {};
    SavedRow taken = *found;
    stored.erase(found);
    return taken;
}

QList<SavedRow> SavedRows::takeAddedPorts(const QString &address)
{
    return takeOf(address, &stored);
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

QList<SavedRow> SavedRows::takeKept(const QString &address)
{
    return takeOf(address, &gone);
}

void SavedRows::renameProfile(const QString &from, const QString &to)
{
    for (QList<SavedRow> *rows : { &gone, &stored }) {
        for (SavedRow &row : *rows)
            row.renameProfile(from, to);
    }
    // In simple mode nothing else is written of any but the first.
    for (const QString &group : file.childGroups()) {
        const QString key = group + QLatin1Char('/') + profileKey;
        if (file.value(key).toString() == from)
            file.setValue(key, to);
    }
}

void SavedRows::forgetRunning()
{
    for (SavedRow &row : gone)
        row.running = row.restsAlone = false;
}

void SavedRows::writeRest(int rows)
{
    for (const QList<SavedRow> *rest : { &gone, &stored }) {
        for (const SavedRow &row : *rest)
            row.write(&file, rows++);
    }
    file.setValue(countKey, rows);
    const QStringList groups = file.childGroups();
    for (const QString &group : groups) {
        bool isRow = false;
        const int index = group.toInt(&isRow);
        if (isRow && index >= rows)
            file.remove(group);
    }
}

bool SavedRows::flush()
{
    file.sync();
    return file.status() != QSettings::AccessError;
}

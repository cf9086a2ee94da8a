#include "desktop/window/VisitTable.h"

#include "desktop/window/DeedLog.h"
#include "desktop/window/WindowText.h"

#include <QLocale>

#include <algorithm>

namespace {

constexpr double newest = 0.4; ///< what the last look counts for in a speed
constexpr int secondsInMinute = 60;
constexpr int secondsInHour = 3600;

QString shownBytes(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

/// "1:02:03" or "2:03".
QString shownTime(qint64 seconds)
{
    const auto two = [](qint64 number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    const qint64 hours = seconds / secondsInHour;
    const qint64 minutes = seconds / secondsInMinute % secondsInMinute;
    const QString start = hours > 0 ? QString::number(hours) + QLatin1Char(':') + two(minutes)
                                    : QString::number(minutes);
    return start + QLatin1Char(':') + two(seconds % secondsInMinute);
}

QString shownProgress(const FileTransfer &transfer)
{
    if (transfer.left < 0)
        return shownBytes(transfer.done);
    const qint64 whole = std::max<qint64>(1, transfer.done + transfer.left);
    return WindowText::tr("%1 %").arg(transfer.done * 100 / whole);
}

} // namespace

QString visitorKey(const Client &client)
{
    return client.address.toString() + QLatin1Char('\n') + QString::fromUtf8(client.account)
        + QLatin1Char('\n') + QString::fromUtf8(client.program);
}

QString keyOf(const ServerVisit &visit)
{
    return QString::number(quintptr(visit.server), 16) + QLatin1Char('/')
        + QString::number(visit.visit.number);
}

std::vector<KeyedTable::Row> visitorRows(const std::vector<ServerVisit> &visits)
{
    std::map<QString, const Visit *> earliest;
    for (const ServerVisit &one : visits) {
        // Who has said nothing yet is nobody.
        if (one.visit.client.address.isNull())
            continue;
        const Visit *&first = earliest[visitorKey(one.visit.client)];
        if (!first || one.visit.since < first->since)
            first = &one.visit;
    }
    std::vector<KeyedTable::Row> rows;
    for (const auto &[key, visit] : earliest) {
        const Client &client = visit->client;
        const QString since =
            QLocale().toString(visit->since.toLocalTime().time(), QLocale::ShortFormat);
        rows.push_back({ key,
                         visit->counted,
                         { client.address.toString(), shownPath(client.account),
                           shownPath(client.program), since } });
    }
    return rows;
}

TransferRows::Pace TransferRows::paceOf(const QString &key, qint64 done,
                                        Clock::time_point now) const
{
    const auto last = paces.find(key);
    // Another request of the same connection begins anew.
    if (last == paces.end() || done < last->second.done)
        return { done, now, 0 };
    const std::chrono::duration<double> passed = now - last->second.at;
    if (passed.count() <= 0)
        return last->second;
    const double speed = double(done - last->second.done) / passed.count();
    const double before = last->second.speed;
    return { done, now, before > 0 ? newest * speed + (1 - newest) * before : speed };
}

std::vector<KeyedTable::Row> TransferRows::look(const std::vector<ServerVisit> &visits,
                                                Clock::time_point now)
{
    std::vector<KeyedTable::Row> rows;
    std::map<QString, Pace> current;
    for (const ServerVisit &one : visits) {
        if (!one.visit.transfer)
            continue;
        const FileTransfer &transfer = *one.visit.transfer;
        const QString key = keyOf(one);
        const Pace pace = current[key] = paceOf(key, transfer.done, now);
        const bool isKnown = pace.speed >= 1;
        const bool ends = isKnown && transfer.left >= 0;
        rows.push_back(
            { key,
              one.visit.counted,
              { shownPath(transfer.path),
                transfer.isUpload ? WindowText::tr("Upload") : WindowText::tr("Download"),
                shownProgress(transfer),
                isKnown ? shownBytes(qint64(pace.speed)) + QLatin1String("/s") : QString(),
                ends ? shownTime(qint64(double(transfer.left) / pace.speed)) : QString(),
                one.visit.client.address.toString() } });
    }
    paces = std::move(current);
    return rows;
}

KeyedTable::KeyedTable(QStringList names, QObject *parent)
    : QAbstractTableModel(parent)
    , columns(std::move(names))
{
}

void KeyedTable::show(std::vector<Row> now)
{
    const auto isBefore = [](const Row &a, const Row &b) { return a.key < b.key; };
    std::sort(now.begin(), now.end(), isBefore);
    for (int i = int(rows.size()) - 1; i >= 0; --i) {
        if (std::binary_search(now.begin(), now.end(), rows[std::size_t(i)], isBefore))
            continue;
        beginRemoveRows({}, i, i);
        rows.erase(rows.begin() + i);
        endRemoveRows();
    }
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (i < rows.size() && rows[i].key == now[i].key) {
            rows[i] = std::move(now[i]);
            continue;
        }
        beginInsertRows({}, int(i), int(i));
        rows.insert(rows.begin() + std::ptrdiff_t(i), std::move(now[i]));
        endInsertRows();
    }
    if (!rows.empty())
        Q_EMIT dataChanged(index(0, 0), index(int(rows.size()) - 1, int(columns.size()) - 1));
}

const KeyedTable::Row *KeyedTable::row(const QModelIndex &index) const
{
    return index.isValid() ? &rows[std::size_t(index.row())] : nullptr;
}

int KeyedTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(rows.size());
}

int KeyedTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(columns.size());
}

QVariant KeyedTable::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const Row *found = row(index);
    if (!found)
        return {};
    const QString text = found->texts.value(index.column());
    return role == Qt::ToolTipRole ? richTip(text) : text;
}

QVariant KeyedTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return columns.value(section);
}

#pragma once

#include "server/Activity.h"

#include <QAbstractTableModel>
#include <QList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <map>
#include <vector>

class WebServer;

/// A table of texts whose rows have keys, so that it can change every second under a selection.
class KeyedTable : public QAbstractTableModel
{
    Q_OBJECT
public:
    struct Row
    {
        QString key; ///< another one for each row
        QHostAddress counted; ///< see `Visit`
        QStringList texts;
    };

    /// `names` are those of the columns.
    explicit KeyedTable(QStringList names, QObject *parent = nullptr);

    void show(std::vector<Row> now);

    /// Not valid when it is gone.
    const Row *row(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const QStringList columns;
    std::vector<Row> rows; ///< by their keys
};

/// A connection and its server.
struct ServerVisit
{
    const WebServer *server;
    Visit visit;
};

/// Names the connection among all.
QString keyOf(const ServerVisit &visit);

/// Names the visitor, whatever the connection.
QString visitorKey(const Client &client);

/// Who is here: a row for each visitor, with however many connections. Columns: address, account,
/// program, since when.
std::vector<KeyedTable::Row> visitorRows(const std::vector<ServerVisit> &visits);

/// Makes rows of what moves. Looked at again and again, it knows how fast. Columns: file,
/// direction, how much, speed, time left, address.
class TransferRows
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int Address = 5; ///< the column

    std::vector<KeyedTable::Row> look(const std::vector<ServerVisit> &visits,
                                      Clock::time_point now);

private:
    struct Pace
    {
        qint64 done = 0; ///< bytes, at the last look
        Clock::time_point at;
        double speed = 0; ///< bytes a second, of the last looks
    };

    Pace paceOf(const QString &key, qint64 done, Clock::time_point now) const;

    std::map<QString, Pace> paces;
};

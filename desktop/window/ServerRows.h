#pragma once

#include "desktop/settings/Configurable.h"
#include "desktop/window/GlobalMode.h"
#include "desktop/window/StartQuestion.h"
#include "desktop/window/TrafficSource.h"

#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class Profile;
class Profiles;
class QHostAddress;
class QNetworkAddressEntry;
class ServerRow;
class WebServer;
struct ServerSetup;

/// The rows: a server for each listen address of the device, and for the further ports that were
/// added to it. Knows no widget. A part of their keeper; its servers end with it.
///
/// In simple mode the rows are one to the user: they share the same content, and added ports are
/// there but not shown.
class ServerRows : public QObject, public Configurable, public TrafficSource
{
    Q_OBJECT
public:
    /// No rows yet. `choice` outlives them.
    ServerRows(Profiles *choice, std::shared_ptr<const ServerSetup> common);
    ~ServerRows() override;

    const QList<ServerRow *> &all() const { return rows; }

    /// Null when there is no such row.
    ServerRow *at(int index) const { return rows.value(index, nullptr); }
    ServerRow *rowOf(const WebServer *server) const;
    bool isShown(const ServerRow *row) const;
    QList<ServerRow *> shownRows() const;

    /// The row that the user has chosen, else the first one; null when there is none.
    ServerRow *current() const { return at(qMax(0, m_current)); }
    int currentIndex() const { return m_current; }
    void setCurrent(int index);

    GlobalMode *mode() { return &m_mode; }

    /// Whether any server is listening.
    bool isRunning() const;

    /// Who is asked about doubts before a start, or once a row that runs gives cause for them: it
    /// is stopped until then. Without anybody a row with a doubt stays stopped.
    void setQuestion(StartQuestion question) { ask = std::move(question); }

    /// Starts a row once its doubts are settled. False when the user refuses.
    bool start(const QPointer<ServerRow> &row);

    /// Starts those that are shown. The status sink hears when there is none.
    void startShown();

    /// Stops all servers when one is running, else starts those that are shown.
    void startOrStop();
    void stopAll();

    /// A new row for an address of the device.
    ServerRow *add(const QNetworkAddressEntry &address);

    /// A new row for a further port of the address of `first`.
    ServerRow *addPort(const ServerRow *first);
    void remove(ServerRow *row);

    /// Why a row of `address` other than `except` can't have this port, translated; empty when it
    /// can.
    QString portRefusal(const QHostAddress &address, int port, const ServerRow *except) const;

    /// Removes all rows, at once, as their servers hold profiles.
    void letAllGo();

    /// `edited` is one of the user's profiles, or an edited copy of one, which then is stored.
    void profileEdited(Profile *edited) override;

    qint64 totalTraffic() const override;
    void updateListening() override;

Q_SIGNALS:
    void rowAdded(ServerRow *row);
    void rowRemoved(int index);

    /// Another row is the current one, or it started, stopped or is found elsewhere now.
    void currentChanged(ServerRow *row);

    void runningChanged(bool running); ///< or goes on

    /// The servers might be reachable from the internet now.
    void publicAddressWanted();

    void dataLimit(WebServer *server);

    /// All were stopped on purpose.
    void allStopped();

    /// The row is stopped, as its key and certificate can't be used.
    void keysRefused(ServerRow *row, const QString &reason);

private:
    void append(ServerRow *row);
    void tellReach(ServerRow *row);
    void askAnew();

    Profiles *profiles;
    std::shared_ptr<const ServerSetup> setup;
    QList<ServerRow *> rows; ///< children
    QList<QPointer<ServerRow>> doubtful; ///< stopped until the user is asked
    StartQuestion ask;
    int m_current = -1; ///< index of a row
    GlobalMode m_mode;
};

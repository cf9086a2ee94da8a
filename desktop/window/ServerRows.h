#pragma once

#include "desktop/settings/Configurable.h"
#include "desktop/window/DeviceNetwork.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/TrafficSource.h"

#include <QList>
#include <QObject>

#include <memory>
#include <optional>
#include <tuple>

class Profile;
class Profiles;
class ServerRow;
class WebServer;
struct ServerSetup;

/// The listen addresses of the device, a row with a server for each, and the further ports that
/// were added to them. Knows no widget. Made by the main window; its servers end with it.
///
/// In simple mode the rows are one to the user: they share the same content and are kept as one,
/// and added ports are there but not shown.
class ServerRows : public QObject, public Configurable, public TrafficSource
{
    Q_OBJECT
public:
    /// Makes the rows of the addresses that `source` gives now, as they were saved, and looks for
    /// others from time to time. `choice` outlives the rows.
    ServerRows(Profiles *choice, std::shared_ptr<const ServerSetup> common, AddressSource source);
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

    bool hasNetwork() const { return !network.addresses().isEmpty(); }
    bool isExpert() const;
    void setExpert(bool on);

    /// Shares `path` through the current row; in simple mode through all of them, now and when
    /// the network comes.
    void share(const QString &path);

    /// Whether any server is listening.
    bool isRunning() const;

    /// Stops all servers when one is running, else starts those that are shown.
    void startOrStop();
    void stopAll();

    /// A new row for a further port of the address of `first`.
    ServerRow *addPort(const ServerRow *first);
    void remove(ServerRow *row);

    /// Brings the rows in line with the device's addresses.
    void loadLocal();

    /// Does so when an address came or went.
    void lookForChanges() { network.lookForChanges(); }

    /// Stops all servers, saves the rows and lets them go. False when they can't be written.
    bool end();

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
    void loaded(); ///< by `loadLocal`
    void onlineChanged(bool online);
    void modeChanged();

    /// The servers might be reachable from the internet now.
    void publicAddressWanted();

    /// The settings of the dynamic-DNS name, or the mode, have changed.
    void dnsWanted();

    void dataLimit(WebServer *server);

private:
    /// What the global profile says that more than its rows depends on.
    using Noticed = std::tuple<qint32, QString, QString, bool>;

    Noticed globalNow() const;
    void noticeGlobal();
    void append(ServerRow *row);
    void tellReach(ServerRow *row);
    void letAllGo();
    void followNetwork();
    void dropVanished();
    void addFound();
    SavedRow savedStateOf(const ServerRow *row, const QList<SavedRow> &kept);
    SavedRow fromFile(int group);
    void restoreAddedPorts(const ServerRow *first, const QList<SavedRow> &kept);
    void saveRows();

    Profiles *profiles;
    std::shared_ptr<const ServerSetup> setup;
    DeviceNetwork network;
    SavedRows saved;
    std::optional<SavedRow> single; ///< simple mode: what the next row takes over
    QList<ServerRow *> rows; ///< children
    int m_current = -1; ///< index of a row
    Noticed noticed;
};

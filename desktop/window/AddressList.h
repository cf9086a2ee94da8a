#pragma once

#include "config/Configurable.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/TrafficSource.h"

#include <QList>
#include <QNetworkAddressEntry>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class AddressTable;
class Profile;
class Profiles;
class QLabel;
class QMenu;
class QPushButton;
class Reachability;
class ServerItem;
class WebServer;
struct ServerSetup;

/// The addresses that a server can be reached at now.
using AddressSource = std::function<QList<QNetworkAddressEntry>()>;

/// Those of the device's network interfaces that are up, loopback ones aside; only addresses with
/// a broadcast address count.
QList<QNetworkAddressEntry> deviceAddresses();

/// The table of listen addresses, a server item for each, with the button that starts and stops
/// them together and the label that says where they can be reached. A child of the main window;
/// its servers end with it. Needs the event handler and the profiles.
///
/// In simple mode the rows are one to the user: they share the same content and are kept as one.
class AddressList : public QWidget, public Configurable, public TrafficSource
{
    Q_OBJECT
public:
    AddressList(Profiles *choice, std::shared_ptr<const ServerSetup> servers, AddressSource source,
                QWidget *parent);
    ~AddressList() override;

    /// The item of a row; null when there is no such row. Rows of added ports are hidden in
    /// simple mode but count.
    ServerItem *getServer(int row) const;
    int getServerCount() const;
    ServerItem *getSelectedItem() const;
    ServerItem *itemOf(const WebServer *server) const;

    /// Shares `path` through the selected item; in simple mode through all of them, now and when
    /// the network comes.
    void setSharedContent(const QString &path);

    /// Whether any server is listening.
    bool isRunning() const;

    /// Asks `question`, which is translated, when a server runs whose profile wants warnings.
    /// False when the user refuses.
    bool askForStop(const QString &question);

    /// Starts the item, or stops it and cuts its connections.
    void toggle(ServerItem *item);

    /// Stops all servers and cuts their connections.
    void stopServers();

    /// Stops all servers, saves the rows and lets them go. False when they can't be written.
    bool end();

    /// Shows what belongs to the global profile's mode.
    void setExpertMode();

    /// In root mode ports up to 1024 can be used.
    void setRootMode(bool on) { rootMode = on; }

    /// Lets the user edit a profile, beginning with a page of the dialog or, with -1, the last one.
    void edit(Profile *profile, int page = -1);

    /// `profile` is one of the user's, or an edited copy of one.
    void profileEdited(Profile *profile) override;

    qint64 totalTraffic() const override;
    void updateListening() override;

    AddressTable *table() const { return m_table; }
    QPushButton *startButton() const { return m_startButton; }
    QLabel *statusLabel() const { return m_statusLabel; }
    Reachability *reachability() const { return m_reachability; }

public Q_SLOTS:
    /// Brings the rows in line with the device's addresses.
    void loadLocal();

    void startButtonPressed();
    void setStartButton(bool running);
    void changed(ServerItem *item);

    /// The device's addresses have changed; `online` when there are any.
    void setOnlineState(bool online);

    /// Looks for addresses that came or went.
    void lookForChanges();

    void cellPressed(int row, int column);
    void editProfile();
    void changeProfile();
    void addNewPort();
    void changePort();
    void remove();

Q_SIGNALS:
    void selectionChanged(ServerItem *item);
    void onlineStateChanged(bool online);
    void dataLimit(WebServer *server);

private:
    /// What the global profile said last.
    struct Noticed
    {
        Noticed() = default;
        explicit Noticed(const Profile &global);
        bool operator==(const Noticed &other) const;

        qint32 dnsEnabled = 0;
        QString dnsUser;
        QString dnsPassword;
        bool expertMode = false;
    };

    void buildWidgets();
    void buildRowMenu();

    QList<ServerItem *> items() const;
    QList<ServerItem *> visibleItems() const;
    QList<ServerItem *> itemsWith(const Profile *profile) const;
    int addressCount() const;

    bool isExpert() const;
    bool isFound(const QHostAddress &address) const;
    bool hasRow(const QHostAddress &address) const;

    void dropVanished();
    void addFound();
    void restoreAsOne(ServerItem *item);
    void restoreRow(ServerItem *item, const QList<SavedRow> &kept);
    void restoreAddedPorts(const ServerItem *first, const QList<SavedRow> &kept);
    ServerItem *addPort(const ServerItem *first);
    void addItem(ServerItem *item);
    void removeRow(ServerItem *item);
    void hideAddedPorts();
    std::optional<int> askPort(const QString &title, const ServerItem *item);
    void saveRows();

    void store(Profile *live, Profile *edited);
    void noticeGlobal();

    Profiles *profiles;
    bool rootMode = false;
    std::shared_ptr<const ServerSetup> setup;
    AddressSource addresses;
    QList<QNetworkAddressEntry> found; ///< as of the last `loadLocal`
    SavedRows saved;
    std::optional<SavedRow> single; ///< simple mode: what the next row takes over

    Reachability *m_reachability;
    Noticed noticed;

    QTimer watch;
    QLabel *caption = nullptr;
    AddressTable *m_table = nullptr;
    QMenu *rowMenu = nullptr;
    QPushButton *m_startButton = nullptr;
    QLabel *m_statusLabel = nullptr;
};

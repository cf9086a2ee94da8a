#pragma once

#include "desktop/settings/ProfileUser.h"
#include "desktop/window/SavedRows.h"
#include "server/WebServer.h"

#include <QIcon>
#include <QObject>
#include <QString>
#include <QTableWidgetItem>

#include <memory>

class AddressList;
class Profiles;

/// What to say of content that is gone.
QString missingText(const QString &path);

/// One row of the address table: an address with its own server. It is the row's first cell and
/// owns the other two. The address list makes it, puts it into its table and lets it go.
class ServerItem : public QObject, public QTableWidgetItem, public ProfileUser
{
    Q_OBJECT
public:
    /// What `restore` does about the port.
    enum RestoreMode { TakeSavedPort = 0, KeepPort = 1 };

    static QString toStart; ///< texts of the status cell
    static QString toStop;
    static QIcon playIcon; ///< pictures of the status cell
    static QIcon stopIcon;

    /// An item for a new server on `address`.
    ServerItem(Profiles *choice, const QNetworkAddressEntry &address,
               std::shared_ptr<const ServerSetup> setup, QObject *parent);

    /// An item for a new server like `other`: the same address, profile and shared content.
    ServerItem(const ServerItem *other, QObject *parent);

    ~ServerItem() override;

    /// Takes over the values of the server's profile and reports to `list` from now on.
    void init(AddressList *list);

    WebServer *server() const { return m_server; }
    QTableWidgetItem *profileCell() const { return m_profileCell.get(); }
    QTableWidgetItem *statusCell() const { return m_statusCell.get(); }
    QHostAddress address() const { return m_server->ip(); }
    bool isListening() const { return m_server->isListening(); }

    /// The row is a further port of an address, added by the user.
    bool isAddedPort() const { return addedPort; }
    void setAddedPort() { addedPort = true; }

    /// Starts the server; when that fails the event handler says why.
    void start();

    /// Stops listening. Open connections go on.
    void stop();

    /// Stops listening and cuts all connections.
    void stopAll();

    /// Takes another port, from 1 to 65535; a listening server starts again on it.
    void setPort(int port);

    /// Refreshes the three cells.
    void update();

    /// Shares a file or folder. When it can't be read, the home folder takes its place and the
    /// event handler says so.
    void setShared(const QString &path);

    /// The address that a browser uses.
    QString getUrl() const;

    Profile *profile() const override { return m_server->config; }
    void useProfile(Profile *profile) override;

    /// The item's profile was edited: `profile` is it, or an edited copy of it, which then is
    /// stored.
    void profileEdited(Profile *profile);

    /// What `save` writes.
    SavedRow state() const;
    void takeState(const SavedRow &row, RestoreMode mode);

    void save(QSettings *settings, int index) const;

    /// Takes over the group `index`; what is missing or unusable there becomes the default.
    void restore(QSettings *settings, int index, RestoreMode mode);

Q_SIGNALS:
    /// The server started or stopped.
    void changed(ServerItem *item);

private:
    void takePortOf(const Profile *profile);

    Profiles *profiles;
    WebServer *m_server; ///< a child
    std::unique_ptr<QTableWidgetItem> m_profileCell;
    std::unique_ptr<QTableWidgetItem> m_statusCell;
    bool addedPort = false;
};

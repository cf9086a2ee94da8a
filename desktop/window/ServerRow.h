#pragma once

#include "desktop/settings/ProfileUser.h"
#include "desktop/window/SavedRows.h"
#include "desktop/window/StartQuestion.h"
#include "desktop/window/TransferPace.h"
#include "server/WebServer.h"

#include <QObject>
#include <QString>

#include <memory>

class Profiles;

/// Why `path` can't be shared, translated; empty when it can.
QString shareRefusal(const QString &path);

/// One row of the address table: an address and port with a server of its own. A child of the
/// rows, which make it and let it go.
class ServerRow : public QObject, public ProfileUser
{
    Q_OBJECT
public:
    /// A row for a new server on `address` that runs with the global profile of `choice`.
    ServerRow(const Profiles *choice, const QNetworkAddressEntry &address,
              std::shared_ptr<const ServerSetup> common, QObject *parent);

    /// A further port of the address of `first`, with its profile and shared content.
    ServerRow(const ServerRow *first, QObject *parent);

    WebServer *server() const { return m_server; }
    QHostAddress address() const { return m_server->ip(); }
    bool isListening() const { return m_server->isListening(); }

    /// The row is a further port of an address, added by the user.
    bool isAddedPort() const { return addedPort; }

    /// The address that a browser uses.
    QString url() const;

    /// What is to be asked before a start, and what to do once the answer is yes.
    StartDoubt doubt() const;
    void settle(StartDoubt doubt);

    /// Why a start has failed, both texts translated; empty when it has not.
    struct Refusal
    {
        QString title;
        QString text;
        bool forKeys = false; ///< the profile's key and certificate can't be used
    };

    /// Starts the server and asks nobody. Without its keys a row that is to encrypt stays stopped.
    Refusal tryStart();

    /// The same; the status sink hears why it fails, or `keysRefused` tells.
    void start();

    /// Stops listening and cuts all connections.
    void stop();

    /// Takes another port, from 1 to 65535; a listening server starts again on it while its open
    /// connections go on.
    void setPort(int port);

    /// Shares a file or folder. What can't be shared changes nothing.
    void share(const QString &path);

    Profile *profile() const override { return m_server->profile(); }

    /// A server that listens stops, with a word, where the profile can't be used.
    void useProfile(Profile *profile) override;

    /// The values of the row's profile have changed; its port was `oldPort`. A port that is the
    /// row's own stays, and any while the new one is refused, for a translated reason.
    void profileChanged(int oldPort, const QString &portRefusal);

    /// The profile with a login that the row ran with before it came back on another; empty once
    /// somebody has decided.
    QString formerProfile() const { return former; }
    void useFormerProfile();

    /// A profile, perhaps one of these, has another name.
    void followRename(const QString &from, const QString &to);

    /// Whether a file has moved on within the last seconds.
    bool isTransferring() const;
    void lookAtTransfers() { pace.look(m_server->visits()); }

    SavedRow state() const;

    /// Goes on as `saved` says; what it does not say is the global profile's or the home folder.
    /// While the saved content can't be shared, the home folder stands in its place and the row
    /// does not start. Gives why, translated; empty when all is as saved.
    QString takeState(const SavedRow &saved);

Q_SIGNALS:
    /// What is shown of the row is another now.
    void changed();

    /// The server started or stopped, or its URL is another.
    void reachChanged();

    /// Something that is saved of the row is another now.
    void stateChanged();

    /// The row is stopped, as its key and certificate can't be used.
    void keysRefused(const QString &reason);

private:
    qint64 trafficBytes() const { return m_server->sentBytes() + m_server->receivedBytes(); }
    Refusal profileRefusal() const;
    void tell(const Refusal &refusal);
    void stopRefused();
    QString restoreContent(const QString &path);

    const Profiles *profiles;
    std::shared_ptr<const ServerSetup> setup;
    WebServer *m_server; ///< a child
    bool addedPort = false;
    QString former;
    TransferPace pace;
    QString missing; ///< saved content that could not be shared since
};

#pragma once

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>

#include <optional>

class AddressList;
class Profiles;
class ServerItem;
class WebServices;
struct PortCheck;
struct WebAnswer;

/// Finds out whether a server can be reached from the internet and under which names, and keeps
/// its dynamic-DNS name up to date. A child of the address list, whose label it words.
class Reachability : public QObject
{
    Q_OBJECT
public:
    Reachability(AddressList *addresses, const Profiles *choice);

    /// The label's text for a server that only the local network reaches.
    static QString localText();

    WebServices *webServices() const { return services; }

public Q_SLOTS:
    /// Checks the remembered item's port, or the selected one's, and updates the dynamic-DNS name.
    void loadPublic();

    /// The same, but without a word when no service is configured.
    void refreshPublic();

    /// Forgets what is known.
    void noPublic();

    void reply(const WebAnswer *answer);
    void slotError(QNetworkReply::NetworkError code);

Q_SIGNALS:
    void labelChanged(const QString &text);

private:
    std::optional<int> portToCheck();
    void checkPort();
    void updateDns();
    void takeDnsAnswer(const WebAnswer &answer);
    bool takePortCheck(const WebAnswer &answer);
    void askForPassword();
    void showReachability();

    AddressList *list;
    const Profiles *profiles;
    WebServices *services;
    QPointer<ServerItem> checkedItem; ///< whose port is being checked
    bool portOpen = false;
    bool asking = false; ///< the question about a password is open
    QString publicAddress;
    QString dnsName;
};

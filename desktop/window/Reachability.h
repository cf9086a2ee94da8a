#pragma once

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <optional>

class Profiles;
class ServerRow;
class ServerRows;
class WebServices;
struct PortCheck;
struct WebAnswer;

/// Finds out whether a server can be reached from the internet and under which names, and keeps
/// its dynamic-DNS name up to date. Made by the main window, which shows what it finds.
class Reachability : public QObject
{
    Q_OBJECT
public:
    /// Both are borrowed.
    Reachability(const ServerRows *servers, const Profiles *choice);

    /// The label's text for a server that only the local network reaches.
    static QString localText();

    WebServices *webServices() const { return services; }

public Q_SLOTS:
    /// Checks the remembered row's port, or the current one's, and updates the dynamic-DNS name.
    void loadPublic();

    /// The same, but without a word when no service is configured.
    void refreshPublic();

    /// The same after the network has changed: as nobody has asked, there is no warning or
    /// question, only a note.
    void followNetwork();

    /// Forgets what is known.
    void noPublic();

    void reply(const WebAnswer *answer);
    void slotError(QNetworkReply::NetworkError code);

Q_SIGNALS:
    /// Where the servers can be reached, as HTML.
    void labelChanged(const QString &text);

    /// How a request went, for the status line.
    void told(const QString &text);
    void warned(const QString &text);
    void noted(const QString &text); ///< instead of a warning or question; plain

    /// Everybody on the internet reaches `row`, whose profile asks for no password.
    void everyoneAdmitted(ServerRow *row);

    /// The provider has something to say that a browser shows.
    void pageOffered(const QUrl &url);

private:
    bool hasServices() const;
    void look();
    std::optional<int> portToCheck();
    void checkPort();
    void updateDns();
    void takeDnsAnswer(const WebAnswer &answer);
    bool takePortCheck(const WebAnswer &answer);
    void warnOfEveryone();
    void showReachability();

    const ServerRows *rows;
    const Profiles *profiles;
    WebServices *services;
    QPointer<ServerRow> checkedRow; ///< whose port is being checked
    bool isAsked = false; ///< for, by the user
    bool portOpen = false;
    QString publicAddress;
    QString dnsName;
};

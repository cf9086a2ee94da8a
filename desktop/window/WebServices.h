#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

/// What a web service sent back.
struct WebAnswer
{
    QUrl url; ///< as asked for; may hold a password, so don't show it
    QByteArray body; ///< at most `WebServices::maxAnswerBytes`
};

/// Asks the open-port-check service and the dynamic-DNS provider. A child of the address list.
/// Each request gives exactly one answer or, when nothing came in time, none.
class WebServices : public QObject
{
    Q_OBJECT
public:
    static constexpr int maxAnswerBytes = 1024 * 1024; ///< the rest is cut off

    explicit WebServices(QObject *parent);

    /// Whether the application settings name the service.
    bool hasPortCheck() const;
    bool hasDynamicDns() const;

    /// Asks whether `port` can be reached from the internet.
    void checkPort(int port);

    /// Has the provider point the name of `user` to this device.
    void updateDns(const QString &user, const QString &password);

    /// The name that the provider keeps for `user`.
    QString dnsName(const QString &user) const;

    void sendRequest(const QUrl &url);

    /// How long a request may take until its answer is whole.
    void setTimeout(std::chrono::milliseconds most) { timeout = most; }

Q_SIGNALS:
    /// `answer` is null when there was no reply.
    void finished(const WebAnswer *answer);
    void error(QNetworkReply::NetworkError code);

private:
    void watch(QNetworkReply *reply);

    QNetworkAccessManager manager;
    std::chrono::milliseconds timeout = std::chrono::seconds(30);
};

/// The addresses of the services are kept in the application settings. https when `base` has no
/// scheme; empty when `base` is.
QUrl portCheckUrl(const QString &base, int port);

/// User and password go in as they are; only what can't stand in a URL is encoded.
QUrl dynamicDnsUrl(const QString &base, const QString &user, const QString &password);

bool isPortCheck(const QUrl &url);
bool isDynamicDns(const QUrl &url);

/// What the open-port check found out.
struct PortCheck
{
    bool open = false;
    QString publicAddress;
};

/// Nothing when `body` is no answer of the service.
std::optional<PortCheck> parsePortCheck(const QByteArray &body);

/// Whether the provider confirms the update of the name.
bool isDnsUpdated(const QByteArray &body);

/// The status label's text for a server that can be reached from outside. `dnsName` may be empty.
QString publicAddressLabel(const QString &dnsName, const QString &publicAddress, int port);

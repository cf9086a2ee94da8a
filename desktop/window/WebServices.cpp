#include "desktop/window/WebServices.h"

#include "config/Profile.h"

#include <QNetworkRequest>
#include <QSettings>
#include <QTimer>

#include <memory>

namespace {

const QLatin1String portCheckPath("/tools/open-ports/check.php");
const QLatin1String dynamicDnsPath("/cgi-bin/dynip.cgi");
const QLatin1String portCheckKey("services/portCheck");
const QLatin1String dnsKey("services/dns");
const QLatin1String dnsDomainKey("services/dnsDomain");

QString setting(QLatin1String key)
{
    return QSettings().value(key).toString().trimmed();
}

QUrl serviceUrl(const QString &base, QLatin1String path, const QString &query)
{
    if (base.isEmpty())
        return {};
    const bool hasScheme = base.contains(QLatin1String("://"));
    QUrl url(hasScheme ? base : QLatin1String("https://") + base);
    QString folder = url.path();
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    url.setPath(folder + path);
    // Tolerant: a "#" in a password must not end the query.
    url.setQuery(query, QUrl::TolerantMode);
    return url;
}

QNetworkRequest requestFor(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setRawHeader("User-Agent", "Quillon_4");
    // Nothing is unpacked, so that a small answer can't become a large one.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::SameOriginRedirectPolicy);
    return request;
}

bool isAnswered(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

} // namespace

WebServices::WebServices(QObject *parent)
    : QObject(parent)
{
}

bool WebServices::hasPortCheck() const
{
    return !setting(portCheckKey).isEmpty();
}

bool WebServices::hasDynamicDns() const
{
    return !setting(dnsKey).isEmpty();
}

void WebServices::checkPort(int port)
{
    sendRequest(portCheckUrl(setting(portCheckKey), port));
}

void WebServices::updateDns(const QString &user, const QString &password)
{
    sendRequest(dynamicDnsUrl(setting(dnsKey), user, password));
}

QString WebServices::dnsName(const QString &user) const
{
    QString domain = setting(dnsDomainKey);
    if (!domain.isEmpty() && !domain.startsWith(QLatin1Char('.')))
        domain.prepend(QLatin1Char('.'));
    return user + domain;
}

void WebServices::sendRequest(const QUrl &url)
{
    QNetworkReply *reply = manager.get(requestFor(url));
    connect(reply, &QNetworkReply::errorOccurred, this, &WebServices::error);
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    watch(reply);
}

void WebServices::watch(QNetworkReply *reply)
{
    const QUrl url = reply->request().url();
    const auto answer = std::make_shared<WebAnswer>(WebAnswer{ url, {} });
    const auto late = std::make_shared<bool>(false);
    connect(reply, &QNetworkReply::readyRead, this, [reply, answer] {
        answer->body += reply->read(maxAnswerBytes - answer->body.size());
        if (answer->body.size() == maxAnswerBytes)
            reply->abort();
    });
    QTimer::singleShot(timeout, reply, [reply, late] {
        *late = true;
        reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, answer, late] {
        Q_EMIT finished(isAnswered(*reply) && !*late ? answer.get() : nullptr);
    });
}

QUrl portCheckUrl(const QString &base, int port)
{
    return serviceUrl(base, portCheckPath, QStringLiteral("portNumber=%1").arg(port));
}

QUrl dynamicDnsUrl(const QString &base, const QString &user, const QString &password)
{
    return serviceUrl(base, dynamicDnsPath,
                      QLatin1String("username=") + user + QLatin1String("&password=") + password);
}

bool isPortCheck(const QUrl &url)
{
    return url.path().endsWith(QLatin1String("s/check.php"));
}

bool isDynamicDns(const QUrl &url)
{
    return url.path().endsWith(QLatin1String("dynip.cgi"));
}

std::optional<PortCheck> parsePortCheck(const QByteArray &body)
{
    // The service answers {"status":"success","message":"Port 80 is open on 192.0.2.1."}; the
    // offsets skip its fixed beginning.
    constexpr int verdictStart = 9;
    constexpr int messageStart = 36;
    if (!body.contains("status"))
        return {};

    PortCheck check;
    check.open = body.indexOf("success", verdictStart) >= 0;
    QByteArray address = body;
    const auto on = address.indexOf(" on ", messageStart);
    if (on >= 0)
        address.remove(0, on + 4);
    const auto quote = address.indexOf('"');
    if (quote >= 0)
        address.truncate(qMax(0, int(quote) - 1));
    check.publicAddress = QString::fromUtf8(address);
    return check;
}

bool isDnsUpdated(const QByteArray &body)
{
    constexpr int noticeStart = 120; ///< behind the head of the provider's page
    return body.indexOf("has been updated", noticeStart) >= 1;
}

QString publicAddressLabel(const QString &dnsName, const QString &publicAddress, int port)
{
    const QString name = dnsName.toHtmlEscaped();
    const QString address = publicAddress.toHtmlEscaped();
    const QString number = QString::number(port);
    if (port == httpPort && !name.isEmpty()) {
        // The opening tag is misspelt in this one text, and stays so.
        return WebServices::tr("<centcer>Public addresses: %1 , %2</center>").arg(name, address);
    }
    if (port == httpPort)
        return WebServices::tr("<center>Public addresses: %1</center>").arg(address);
    if (!name.isEmpty())
        return WebServices::tr("<center>Public addresses: %1:%2 , %3:%4</center>")
            .arg(name, number, address, number);
    return WebServices::tr("<center>Public addresses: %1:%2</center>").arg(address, number);
}

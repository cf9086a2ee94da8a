#include "desktop/window/Reachability.h"

#include "config/Profiles.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/WebServices.h"
#include "desktop/window/WindowText.h"

Reachability::Reachability(const ServerRows *servers, const Profiles *choice)
    : rows(servers)
    , profiles(choice)
    , services(new WebServices(this))
{
    connect(services, &WebServices::finished, this, &Reachability::reply);
    connect(services, &WebServices::error, this, &Reachability::slotError);
}

QString Reachability::localText()
{
    return tr("<center>Server accessible only on local network</center>");
}

void Reachability::loadPublic()
{
    isAsked = true;
    look();
}

void Reachability::refreshPublic()
{
    if (hasServices())
        loadPublic();
}

void Reachability::followNetwork()
{
    isAsked = false;
    if (hasServices())
        look();
}

bool Reachability::hasServices() const
{
    return services->hasPortCheck() || (profiles->global()->usesDns() && services->hasDynamicDns());
}

void Reachability::look()
{
    checkPort();
    if (profiles->global()->usesDns())
        updateDns();
}

void Reachability::checkPort()
{
    const std::optional<int> port = portToCheck();
    if (!port)
        return;
    if (services->hasPortCheck())
        services->checkPort(*port);
    else
        Q_EMIT told(tr("No port check service configured"));
}

/// Nothing when the last check's result still holds.
std::optional<int> Reachability::portToCheck()
{
    if (checkedRow && portOpen && checkedRow->isListening())
        return {};
    if (!checkedRow)
        checkedRow = rows->current();
    return checkedRow ? checkedRow->server()->port : profiles->global()->port;
}

void Reachability::updateDns()
{
    const Profile *global = profiles->global();
    if (global->dnsUser.isEmpty() || global->dnsPassword.isEmpty()) {
        const QString problem = tr("User and password required for DNS service.");
        isAsked ? Q_EMIT warned(problem) : Q_EMIT noted(problem);
    } else if (services->hasDynamicDns())
        services->updateDns(global->dnsUser, global->dnsPassword);
    else
        Q_EMIT told(tr("No DNS service configured"));
}

void Reachability::reply(const WebAnswer *answer)
{
    if (!answer) {
        Q_EMIT told(tr("No internet connection"));
        return;
    }
    if (isDynamicDns(answer->url))
        takeDnsAnswer(*answer);
    else if (isPortCheck(answer->url) && !takePortCheck(*answer))
        return;

    if (!checkedRow)
        return;
    // The check's traffic is the server's.
    checkedRow->server()->addReceivedBytes(answer->body.size());
    if (portOpen)
        warnOfEveryone();
    showReachability();
}

void Reachability::takeDnsAnswer(const WebAnswer &answer)
{
    if (isDnsUpdated(answer.body))
        dnsName = services->dnsName(profiles->global()->dnsUser);
    else
        Q_EMIT pageOffered(answer.url);
}

bool Reachability::takePortCheck(const WebAnswer &answer)
{
    const std::optional<PortCheck> check = parsePortCheck(answer.body);
    if (!check)
        return false;
    portOpen = check->open;
    publicAddress = check->publicAddress;
    return true;
}

void Reachability::warnOfEveryone()
{
    const bool warns = profiles->global()->warningMode == Qt::Checked;
    if (!warns || checkedRow->profile()->authMode != AuthNone)
        return;
    if (isAsked)
        Q_EMIT everyoneAdmitted(checkedRow);
    else
        Q_EMIT noted(WindowText::tr("The shared files are accessible for everyone."));
}

void Reachability::showReachability()
{
    if (!portOpen)
        Q_EMIT labelChanged(localText());
    else if (checkedRow)
        Q_EMIT labelChanged(publicAddressLabel(dnsName, publicAddress, checkedRow->server()->port));
}

void Reachability::noPublic()
{
    if (checkedRow)
        Q_EMIT labelChanged(localText());
    else
        Q_EMIT labelChanged(QString());
    checkedRow = nullptr;
    portOpen = false;
    publicAddress.clear();
}

void Reachability::slotError(QNetworkReply::NetworkError code)
{
    // Not the error's own text, as it names the URL with the password.
    const bool unreachable = code == QNetworkReply::ConnectionRefusedError
        || code == QNetworkReply::HostNotFoundError || code == QNetworkReply::TimeoutError;
    if (unreachable)
        Q_EMIT told(tr("No internet connection"));
}

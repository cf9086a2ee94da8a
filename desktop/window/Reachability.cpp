#include "desktop/window/Reachability.h"

#include "config/Profiles.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/AddressList.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/ServerItem.h"
#include "desktop/window/WebServices.h"

#include <QDesktopServices>

namespace {

constexpr int authenticationPage = 1;

void tell(const QString &text)
{
    EventHandler::eventHandler->statusmsg(text);
}

} // namespace

Reachability::Reachability(AddressList *addresses, const Profiles *choice)
    : QObject(addresses)
    , list(addresses)
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
    checkPort();
    if (profiles->global()->usesDns())
        updateDns();
}

void Reachability::refreshPublic()
{
    const bool dns = profiles->global()->usesDns() && services->hasDynamicDns();
    if (services->hasPortCheck() || dns)
        loadPublic();
}

void Reachability::checkPort()
{
    const std::optional<int> port = portToCheck();
    if (!port)
        return;
    if (services->hasPortCheck())
        services->checkPort(*port);
    else
        tell(tr("No port check service configured"));
}

/// Nothing when the last check's result still holds.
std::optional<int> Reachability::portToCheck()
{
    if (checkedItem && portOpen && checkedItem->isListening())
        return {};
    if (!checkedItem)
        checkedItem = list->getSelectedItem();
    return checkedItem ? checkedItem->server()->port : profiles->global()->port;
}

void Reachability::updateDns()
{
    const Profile *global = profiles->global();
    if (global->dnsUser.isEmpty() || global->dnsPassword.isEmpty())
        showBox(list->window(), QMessageBox::Warning,
                tr("User and password required for DNS service."));
    else if (services->hasDynamicDns())
        services->updateDns(global->dnsUser, global->dnsPassword);
    else
        tell(tr("No DNS service configured"));
}

void Reachability::reply(const WebAnswer *answer)
{
    if (!answer) {
        tell(tr("No internet connection"));
        return;
    }
    if (isDynamicDns(answer->url))
        takeDnsAnswer(*answer);
    else if (isPortCheck(answer->url) && !takePortCheck(*answer))
        return;

    if (!checkedItem)
        return;
    // The check's traffic is the server's.
    checkedItem->server()->addReceivedBytes(answer->body.size());
    if (portOpen)
        askForPassword();
    showReachability();
}

void Reachability::takeDnsAnswer(const WebAnswer &answer)
{
    if (isDnsUpdated(answer.body))
        dnsName = services->dnsName(profiles->global()->dnsUser);
    else
        QDesktopServices::openUrl(answer.url);
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

void Reachability::askForPassword()
{
    const bool warns = profiles->global()->warningMode == Qt::Checked;
    if (asking || !warns || checkedItem->profile()->authMode != AuthNone)
        return;
    asking = true;
    const bool wanted = askYesNo(list->window(),
                                 tr("The shared files are accessible for everyone.")
                                     + QLatin1Char('\n') + tr("Do you want to set password?"));
    asking = false;
    if (wanted && checkedItem)
        list->edit(checkedItem->profile(), authenticationPage);
}

void Reachability::showReachability()
{
    if (!portOpen)
        Q_EMIT labelChanged(localText());
    else if (checkedItem)
        Q_EMIT labelChanged(
            publicAddressLabel(dnsName, publicAddress, checkedItem->server()->port));
}

void Reachability::noPublic()
{
    if (checkedItem)
        Q_EMIT labelChanged(localText());
    else
        Q_EMIT labelChanged(QString());
    checkedItem = nullptr;
    portOpen = false;
    publicAddress.clear();
}

void Reachability::slotError(QNetworkReply::NetworkError code)
{
    // Not the error's own text, as it names the URL with the password.
    const bool unreachable = code == QNetworkReply::ConnectionRefusedError
        || code == QNetworkReply::HostNotFoundError || code == QNetworkReply::TimeoutError;
    if (unreachable)
        tell(tr("No internet connection"));
}

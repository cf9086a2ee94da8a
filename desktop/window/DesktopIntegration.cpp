#include "desktop/window/DesktopIntegration.h"

#include "desktop/look/DesktopChoices.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/ServerRows.h"

#include <utility>

DesktopIntegration::DesktopIntegration(ServerRows *servers, EventHandler *events, Announce announce,
                                       QWidget *mainWindow)
    : transfers(servers)
    , awake(tr("Files are being transferred."))
    , announcements(servers, std::move(announce))
    , m_notices(mainWindow)
    , m_tray(servers)
{
    connect(&transfers, &TransferWatch::looked, &awake, &KeepAwake::setNeeded);
    connect(events, &EventHandler::visitorCame, &m_notices, &Notices::tellVisitor);
    connect(events, &EventHandler::deedsDone, &m_notices, &Notices::tellUploads);
}

bool DesktopIntegration::goesOnInTray() const
{
    return QSystemTrayIcon::isSystemTrayAvailable() && DesktopChoices::stored().staysInTray;
}

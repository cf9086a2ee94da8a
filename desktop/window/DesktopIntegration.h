#pragma once

#include "desktop/window/Announcements.h"
#include "desktop/window/Notices.h"
#include "desktop/window/TransferWatch.h"
#include "desktop/window/TrayIcon.h"
#include "platform/KeepAwake.h"

class EventHandler;

/// What the program does in the desktop besides its window: it keeps the machine awake while files
/// are transferred, has its servers found, tells what happens, and stands in the tray. A part of
/// the main window.
class DesktopIntegration : public QObject
{
    Q_OBJECT
public:
    /// All are borrowed and outlive it.
    DesktopIntegration(ServerRows *servers, EventHandler *events, Announce announce,
                       QWidget *mainWindow);

    Notices *notices() { return &m_notices; }
    TrayIcon *tray() { return &m_tray; }

    /// Whether the program goes on when its window is closed.
    bool goesOnInTray() const;

private:
    TransferWatch transfers;
    KeepAwake awake;
    Announcements announcements;
    Notices m_notices;
    TrayIcon m_tray;
};

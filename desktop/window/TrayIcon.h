#pragma once

#include <QMenu>
#include <QSystemTrayIcon>

class ServerRows;

/// The program in the desktop's tray, where there is one, with what is done most. A part of the
/// main window.
class TrayIcon : public QSystemTrayIcon
{
    Q_OBJECT
public:
    /// `servers` are borrowed and outlive it.
    explicit TrayIcon(const ServerRows *servers);

Q_SIGNALS:
    void windowWanted();
    void startStopWanted();
    void addressWanted(); ///< in the clipboard
    void quitWanted();

private:
    QMenu menu;
};

#pragma once

#include "desktop/window/Announcements.h"
#include "desktop/window/Reachability.h"
#include "desktop/window/RowKeeper.h"
#include "desktop/window/StartRequest.h"

#include <QMainWindow>
#include <QSet>
#include <QTimer>

#include <memory>

class Activity;
class AddressList;
class DesktopIntegration;
class EventHandler;
class Look;
class MainMenu;
class Profiles;
class QApplication;
class QLabel;
class RowPanel;

/// The main window: what is shared, the address list, menus and the status line. Made in `main`,
/// lives for the whole run; the rows are its own.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// `choice`, `lookInUse` and `sink` are borrowed. `common` is for all servers, which report to
    /// `sink`. In root mode ports up to 1024 can be used.
    MainWindow(Profiles *choice, Look *lookInUse, EventHandler *sink,
               const std::shared_ptr<const ServerSetup> &common, bool rootMode,
               AddressSource source = deviceAddresses, Announce announce = {});
    ~MainWindow() override;

    RowKeeper *keeper() const { return m_keeper.get(); }
    ServerRows *rows() const { return m_keeper->rows(); }
    Reachability *reachability() const { return m_reachability.get(); }
    AddressList *addressList() const { return addresses; }
    RowPanel *rowPanel() const { return panel; }

    /// Stops and saves everything without a question. False when something can't be saved.
    bool endInOrder();

    /// Comes to the front, and does what a start asks for. Rows don't start with other content than
    /// it names, nor with the program when what was saved of them is lost.
    void call(const StartRequest &request);

public Q_SLOTS:
    void setExpertMode(bool on);
    void dataLimit(WebServer *server);

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    /// What closing the window does.
    enum class Life {
        Windowed, ///< it ends the program
        InTray, ///< the same, but nothing else would, as it went on in the tray before
        Quitting ///< the program ends whatever the tray
    };

    void startProfiles();
    void warnOfRoot();
    void layOut();
    void connectRows();
    void connectReachability();
    void connectMenus();
    void connectTray();
    void copyAddress();
    void quit();
    void copy(const QString &address);
    void askForPassword(ServerRow *row);
    void saveGeometryNow();

    Profiles *profiles;
    EventHandler *events;
    std::unique_ptr<RowKeeper> m_keeper;
    std::unique_ptr<Activity> activity;
    std::unique_ptr<DesktopIntegration> integration;
    std::unique_ptr<Reachability> m_reachability;
    QSet<const WebServer *> limitBoxes; ///< servers whose box is open
    bool asksForPassword = false; ///< the question is open
    bool ended = false; ///< closed in order
    Life life = Life::Windowed;
    bool wasShown = false;

    AddressList *addresses;
    MainMenu *menu;
    RowPanel *panel;
    QLabel *statusLine;
    QTimer geometryTimer; ///< runs while the window moves
};

/// Has `window` close in order, and the program end, with the session.
void endWithTheSession(QApplication *app, MainWindow *window);

/// What to say when `server` has reached its traffic limit.
QString trafficLimitText(const WebServer &server);

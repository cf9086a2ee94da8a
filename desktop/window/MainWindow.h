#pragma once

#include "desktop/window/Reachability.h"
#include "desktop/window/RowKeeper.h"
#include "desktop/window/StartQuestions.h"

#include <QMainWindow>
#include <QSet>

#include <memory>

class AddressList;
class EventHandler;
class Look;
class MainMenu;
class Profiles;
class QLabel;
class RowPanel;

/// The main window: what is shared, the address list, menus and the status line. Made in `main`,
/// lives for the whole run; the rows are its own.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// `choice`, `lookInUse` and `sink` are borrowed. `common` is for all servers, which report to
    /// `sink`. `mode` is the first command-line argument, null when there is none.
    MainWindow(Profiles *choice, Look *lookInUse, EventHandler *sink,
               const std::shared_ptr<const ServerSetup> &common, const char *mode,
               AddressSource source = deviceAddresses);
    ~MainWindow() override;

    RowKeeper *keeper() const { return m_keeper.get(); }
    ServerRows *rows() const { return m_keeper->rows(); }
    Reachability *reachability() const { return m_reachability.get(); }
    AddressList *addressList() const { return addresses; }
    RowPanel *rowPanel() const { return panel; }

public Q_SLOTS:
    void setExpertMode(bool on);
    void dataLimit(WebServer *server);

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void startProfiles();
    void warnOfRoot();
    void layOut();
    void connectRows();
    void connectReachability();
    void connectMenus();
    void askForPassword(ServerRow *row);
    bool endInOrder();

    Profiles *profiles;
    EventHandler *events;
    std::unique_ptr<RowKeeper> m_keeper;
    std::unique_ptr<Reachability> m_reachability;
    QSet<const WebServer *> limitBoxes; ///< servers whose box is open
    bool asksForPassword = false; ///< the question is open
    bool ended = false; ///< closed in order
    bool wasShown = false;

    AddressList *addresses;
    MainMenu *menu;
    RowPanel *panel;
    QLabel *statusLine;
    std::unique_ptr<StartQuestions> questions;
};

/// What to say when `server` has reached its traffic limit.
QString trafficLimitText(const WebServer &server);

#pragma once

#include "desktop/window/Reachability.h"
#include "desktop/window/RowKeeper.h"

#include <QMainWindow>
#include <QSet>

#include <memory>

class AddressList;
class EventHandler;
class FileMenu;
class LinkLabel;
class Look;
class Profiles;
class QAction;
class QLabel;
class QMenu;
class QPushButton;

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

public Q_SLOTS:
    void setExpertMode(bool on);
    void help();
    void about();
    void dataLimit(WebServer *server);

    /// Shares `path` from now on, if there is such a file or folder.
    void share(const QString &path);

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void startProfiles();
    void warnOfRoot();
    void makeMenu();
    QAction *addMenuAction(const QString &text, const char *name);
    void makeButtons();
    void layOut();
    void connectRows();
    void showCurrent(ServerRow *row);
    void askForPassword(ServerRow *row);
    bool endInOrder();

    Profiles *profiles;
    Look *look;
    EventHandler *events;
    std::unique_ptr<RowKeeper> m_keeper;
    std::unique_ptr<Reachability> m_reachability;
    QSet<const WebServer *> limitBoxes; ///< servers whose box is open
    bool asksForPassword = false; ///< the question is open
    bool ended = false; ///< closed in order
    bool wasShown = false;

    AddressList *addresses;
    QMenu *menu;
    FileMenu *fileMenu;
    QAction *reloadPublic = nullptr;
    QAction *reloadLocal = nullptr;
    QAction *settings = nullptr;
    QAction *expertMode = nullptr;
    LinkLabel *sharedLink = nullptr;
    QPushButton *itemStart = nullptr;
    QPushButton *itemSettings = nullptr;
    QLabel *statusLine = nullptr;
};

/// What to say when `server` has reached its traffic limit.
QString trafficLimitText(const WebServer &server);

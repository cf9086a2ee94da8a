#pragma once

#include "config/Profile.h"
#include "desktop/window/AddressList.h"
#include "server/Routes.h"

#include <QMainWindow>
#include <QSet>

#include <array>
#include <memory>

class EventHandler;
class LinkLabel;
class QAction;
class QMenu;
class QMessageBox;
class QPushButton;
class ServerItem;
class WebServer;

/// The main window. Makes the event handler and holds the address list; lives for the whole run.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// `choice` is borrowed. `mode` is the first command-line argument, null when there is none.
    /// `rows` answer the requests of all servers.
    MainWindow(Profiles *choice, const char *mode, Routes rows = fileRoutes(),
               AddressSource source = deviceAddresses);
    ~MainWindow() override;

    AddressList *addressList() const { return addresses; }

public Q_SLOTS:
    void browseFolder();
    void browseFile();
    void openRecentFile();
    void globalConfig();
    void guiConf();
    void setExpertMode(bool on);
    void help();
    void about();
    void aboutQt();
    void changed(ServerItem *item);
    void onlineStateChanged(bool online);
    void linkActivated(const QString &link);
    void dataLimit(WebServer *server);

    /// Shares `path` from now on, if there is such a file or folder.
    void fileOrDirSelected(const QString &path);

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void makeTexts();
    void startProfiles();
    void makeActions();
    QAction *addMenuAction(const QString &text, const char *name);
    void makeFileMenu();
    void makeButtons();
    void create();
    void setTabOrders();
    void connectList();
    void setRootMode(const char *mode);
    void setCurrentFile(const QString &path);
    void updateRecentFileActions();
    void showShared(const QString &path);
    QString getParentDir() const;
    void toggleItem();
    bool endInOrder();

    Profiles *profiles;
    std::unique_ptr<EventHandler> events;
    AddressList *addresses = nullptr;
    QSet<const WebServer *> limitBoxes; ///< servers whose box is open
    bool ended = false; ///< closed in order
    bool wasShown = false;

    QMenu *menu = nullptr;
    QAction *reloadPublic = nullptr;
    QAction *reloadLocal = nullptr;
    QAction *settings = nullptr;
    QAction *lookAndFeel = nullptr;
    QAction *expertMode = nullptr;
    QMenu *fileMenu = nullptr;
    std::array<QAction *, Profile::maxRecentFiles> recentFiles = {};
    LinkLabel *sharedLink = nullptr;
    QPushButton *menuButton = nullptr;
    QPushButton *fileButton = nullptr;
    QPushButton *itemStart = nullptr;
    QPushButton *itemSettings = nullptr;
};

/// How a recent file is named in the menu: long paths by their last part.
QString recentFileLabel(const QString &path);

/// What to say when `server` has reached its traffic limit.
QString trafficLimitText(const WebServer &server);

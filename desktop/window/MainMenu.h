#pragma once

#include <QMenu>

class Look;

/// The menu of what concerns all rows, and of help. A child of the main window, where the keys of
/// its entries act.
class MainMenu : public QMenu
{
    Q_OBJECT
public:
    /// `lookInUse` is borrowed. The help is shown in `language`, the name of its folder.
    MainMenu(Look *lookInUse, const QString &language, QWidget *parent);

    /// Shows what belongs to the mode.
    void showMode(bool expert);

Q_SIGNALS:
    void publicReloadWanted();
    void localReloadWanted();
    void settingsWanted();
    void addressWanted(); ///< in the clipboard
    void activityWanted();
    void quitWanted();

    /// The user has switched the mode; `showMode` takes that back.
    void expertModeWanted(bool on);

private:
    QAction *addNamed(const char *name, const QString &text, const char *keys = "");
    void about();

    QAction *reloadPublic = nullptr;
    QAction *reloadLocal = nullptr;
    QAction *settings = nullptr;
    QAction *expertMode = nullptr;
};

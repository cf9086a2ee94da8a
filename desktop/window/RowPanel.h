#pragma once

#include <QWidget>

class FileMenu;
class LinkLabel;
class Profiles;
class QMenu;
class QPushButton;
class RowKeeper;
class ServerRow;

/// What the current row shares, the buttons for it, and those that open the menus. A child of the
/// main window.
class RowPanel : public QWidget
{
    Q_OBJECT
public:
    /// Shows the current one of the rows of `ofRows`; all are borrowed.
    RowPanel(Profiles *choice, RowKeeper *ofRows, QMenu *mainMenu, QWidget *parent);

    /// The widgets in the order in which the Tab key reaches them.
    QList<QWidget *> tabOrder() const;

    /// Shows what belongs to the mode.
    void showMode(bool expert);

public Q_SLOTS:
    /// Shares `path` through `row` from now on, or through the current one. What can't be shared is
    /// refused with a word: false.
    bool share(const QString &path, ServerRow *row = nullptr);

Q_SIGNALS:
    /// Those of the current row's profile.
    void settingsWanted();

private:
    void makeWidgets(QMenu *mainMenu);
    void layOut();
    void connectWidgets();
    void showCurrent(ServerRow *row);

    Profiles *profiles;
    RowKeeper *keeper;
    FileMenu *fileMenu;
    QPushButton *fileButton = nullptr;
    QPushButton *startButton = nullptr;
    QPushButton *settingsButton = nullptr;
    QPushButton *menuButton = nullptr;
    LinkLabel *sharedLink = nullptr;
};

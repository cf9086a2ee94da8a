#pragma once

#include <QWidget>

#include <optional>

class AddressHero;
class AddressTable;
class LinkLabel;
class PermissionButton;
class Profile;
class Profiles;
class QLabel;
class QMenu;
class QPushButton;
class RowKeeper;
class ServerRow;
class ServerRows;

/// The table of listen addresses with the button that starts and stops them together, the label
/// that says where they can be reached, and the expert's menu of a row. A child of the main window.
class AddressList : public QWidget
{
    Q_OBJECT
public:
    /// Shows the rows of `ofRows`; both are borrowed. In root mode ports up to 1024 can be used.
    AddressList(Profiles *choice, RowKeeper *ofRows, bool forRoot, QWidget *parent);

    /// Lets the user edit a profile, beginning with a page of the dialog or, with -1, the last one.
    void edit(Profile *profile, int page = -1);

    /// Asks `question`, which is translated, when a server runs whose profile wants warnings.
    /// False when the user refuses.
    bool askForStop(const QString &question);

    AddressTable *table() const { return m_table; }
    QPushButton *startButton() const { return m_startButton; }
    PermissionButton *permissionButton() const { return m_permission; }
    AddressHero *hero() const { return m_hero; }
    QLabel *statusLabel() const { return m_statusLabel; }
    LinkLabel *switchLink() const { return toApplication; }

public Q_SLOTS:
    /// Asks first when transfers are to be cut.
    void startOrStop();
    void showRunning(bool running);
    void showNetwork();

    /// Shows `text`, HTML, where the servers can be reached, below their own addresses.
    void showReach(const QString &text);
    void editProfile();
    void changeProfile();
    void addNewPort();
    void changePort();
    void removeRow();

private:
    void buildWidgets();
    void buildRowMenu();
    void connectRows();
    void showStatus();
    void showSwitch();
    void cellChosen(int index, int column);
    std::optional<int> askPort(const QString &title, const ServerRow *row, const ServerRow *except);

    Profiles *profiles;
    RowKeeper *keeper;
    ServerRows *rows;
    const bool rootMode;
    QLabel *caption = nullptr;
    AddressTable *m_table = nullptr;
    QMenu *rowMenu = nullptr;
    QPushButton *m_startButton = nullptr;
    PermissionButton *m_permission = nullptr;
    AddressHero *m_hero = nullptr;
    QLabel *m_statusLabel = nullptr;
    LinkLabel *toApplication = nullptr; ///< leads to the choice of what browsers get
    QString reach; ///< what is known beside the addresses
};

#pragma once

#include "desktop/settings/SettingsPage.h"

class QComboBox;
class QStackedWidget;
class QTableWidget;

/// The settings of who may come in. A child of the settings dialog.
class AccessPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit AccessPage(Profile *copy);

private Q_SLOTS:
    void setMode(int mode);
    void showPanel(int mode);
    void addUser();
    void removeUser();
    void editRights();
    void storeUsers();
    void setPasswordsVisible(bool visible);

private:
    QWidget *passwordPanel();
    void bindHashed(QLineEdit *edit);
    QWidget *usersPanel();
    void appendRow(const QString &user, const QString &password);
    void fillTable();

    QString keptHash; ///< of the login page's password
    QComboBox *modes;
    QStackedWidget *panels;
    QTableWidget *table = nullptr;
    bool showPasswords = false; ///< the cells and editors of the table look here
};

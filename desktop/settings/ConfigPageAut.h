#pragma once

#include "desktop/settings/ConfigPage.h"

class QComboBox;
class QStackedWidget;
class QTableWidget;

/// The settings of who may come in. A child of the settings dialog.
class ConfigPageAut : public ConfigPage
{
    Q_OBJECT

public:
    explicit ConfigPageAut(QWidget *parent = nullptr);

private Q_SLOTS:
    void setMode(int mode);
    void addUser();
    void removeUser();
    void storeUsers();
    void setPasswordsVisible(bool visible);

private:
    QWidget *passwordPanel();
    QWidget *usersPanel();
    void appendRow(const QString &user, const QString &password);
    void fillTable();

    QComboBox *modes;
    QStackedWidget *panels;
    QTableWidget *table = nullptr;
    bool showPasswords = false; ///< the cells and editors of the table look here
};

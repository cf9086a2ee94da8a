#pragma once

#include "config/Rights.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QLineEdit;

/// Edits what one account may do, and the folder that is all it sees. A child of the page of the
/// accounts.
class RightsDialog : public QDialog
{
    Q_OBJECT

public:
    /// `inherited` are the rights of an account that has none of its own.
    RightsDialog(const AccountRights &account, Rights inherited, QWidget *parent);

    /// As chosen.
    AccountRights account() const;

private:
    void showRights(bool own);
    Rights checkedRights() const;

    const Rights everyones;
    Rights owns; ///< last chosen
    QCheckBox *ownBox;
    std::vector<QCheckBox *> boxes; ///< of the rights, in their order
    QLineEdit *homeEdit;
};

#pragma once

#include "config/Rights.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QLineEdit;

/// Edits what an account or everyone may do, and the folder that is all the account sees. A child
/// of a settings page.
class RightsDialog : public QDialog
{
    Q_OBJECT

public:
    /// Only an account has a home.
    enum class Of { Account, Everyone };

    /// `inherited` are the rights where `present` has none of its own.
    RightsDialog(Of whom, const AccountRights &present, Rights inherited, QWidget *parent);

    AccountRights chosen() const;

private:
    void showRights(bool own);
    Rights checkedRights() const;

    const Rights others; ///< that are inherited
    Rights owns; ///< last chosen
    QCheckBox *ownBox;
    std::vector<QCheckBox *> boxes; ///< of the rights, in their order
    QLineEdit *homeEdit;
};

#pragma once

#include <QDialog>

class PasswordField;
class QCheckBox;
class QLineEdit;

/// A line for the name of an account. It takes no colon, which would end the name where the
/// account is stored. The caller owns it.
QLineEdit *newAccountNameEdit(QWidget *parent);

/// Asks for the name and the password of a new user account.
/// A child of the page that adds the account.
class UserDialog : public QDialog
{
    Q_OBJECT

public:
    explicit UserDialog(QWidget *parent);

    // Neither is empty after OK.
    QString user() const;

    /// As it is to be stored: its hash, unless Digest is to use it.
    QString password() const { return stored; }

    void accept() override;

private:
    QLineEdit *nameEdit;
    PasswordField *passwordField;
    QCheckBox *readable;
    QString stored;
};

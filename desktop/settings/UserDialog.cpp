#include "desktop/settings/UserDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Prompts.h"

#include <QLabel>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

QLineEdit *newAccountNameEdit(QWidget *parent)
{
    static const QRegularExpression noColon(QStringLiteral("[^:]*"));
    auto *edit = new QLineEdit(parent);
    edit->setValidator(new QRegularExpressionValidator(noColon, edit));
    return edit;
}

UserDialog::UserDialog(QWidget *parent)
    : QDialog(parent)
    , nameEdit(newAccountNameEdit(this))
    , passwordField(new PasswordField)
{
    setWindowTitle(tr("Add user"));
    nameEdit->setMinimumHeight(fingerSize);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(newCaption(tr("User"), nameEdit));
    layout->addWidget(nameEdit);
    layout->addWidget(newCaption(tr("Password"), passwordField));
    layout->addWidget(passwordField);
    layout->addStretch();
    auto *buttons = new OkCancelButtons(this);
    layout->addWidget(buttons);

    // A nameless account would let in whoever gives no name.
    buttons->ok()->setEnabled(false);
    connect(nameEdit, &QLineEdit::textChanged, buttons,
            [buttons](const QString &name) { buttons->ok()->setEnabled(!name.isEmpty()); });
}

void UserDialog::accept()
{
    if (password().isEmpty())
        return warn(this, tr("A user needs a password."));
    QDialog::accept();
}

QString UserDialog::user() const
{
    return nameEdit->text();
}

QString UserDialog::password() const
{
    return passwordField->edit()->text();
}

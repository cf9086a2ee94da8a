#include "desktop/settings/UserDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Prompts.h"
#include "server/PasswordHash.h"

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
    , readable(new SwitchBox(tr("Keep readable for Digest")))
{
    setWindowTitle(tr("Add user"));
    nameEdit->setMinimumHeight(fingerSize);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(newCaption(tr("User"), nameEdit));
    layout->addWidget(nameEdit);
    layout->addWidget(newCaption(tr("Password"), passwordField));
    layout->addWidget(passwordField);
    layout->addWidget(readable);
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
    const QString typed = passwordField->edit()->text();
    if (typed.isEmpty())
        return warn(this, tr("A user needs a password."));
    stored = readable->isChecked() ? typed : QString::fromLatin1(newPasswordHash(typed.toUtf8()));
    if (stored.isEmpty())
        return warn(this, tr("There is not enough memory to keep the password."));
    QDialog::accept();
}

QString UserDialog::user() const
{
    return nameEdit->text();
}

#include "desktop/settings/AccessPage.h"

#include "desktop/settings/RightsDialog.h"
#include "desktop/settings/UserDialog.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/TurningRow.h"
#include "server/PasswordHash.h"

#include <QFormLayout>
#include <QHeaderView>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

enum Column { UserColumn = 0, PasswordColumn = 1, LoginColumn = 2 };

constexpr int storedName = Qt::UserRole; ///< under which the account was last stored

constexpr QLatin1Char separator(':');

/// A stored password. Whatever shows, reads out or copies it gets dots, the same for all so that
/// they do not tell its length, unless passwords are to be seen.
class PasswordItem : public QTableWidgetItem
{
public:
    PasswordItem(const QString &password, const bool &shown)
        : QTableWidgetItem(password)
        , visible(shown)
    {
    }

    QVariant data(int role) const override
    {
        const QVariant value = QTableWidgetItem::data(role);
        const bool hide = role == Qt::DisplayRole && !visible && !value.toString().isEmpty();
        return hide ? QString(8, QChar(0x2022)) : value;
    }

private:
    const bool &visible;
};

/// By which schemes of HTTP the account of a password can log in.
class LoginItem : public QTableWidgetItem
{
public:
    /// The item of the same row, which outlives it.
    explicit LoginItem(const QTableWidgetItem &stored)
        : password(stored)
    {
        setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    }

    QVariant data(int role) const override
    {
        if (role != Qt::DisplayRole)
            return QTableWidgetItem::data(role);
        const bool hashed = isPasswordHash(password.data(Qt::EditRole).toString());
        return hashed ? QStringLiteral("Basic") : QStringLiteral("Digest, Basic");
    }

private:
    const QTableWidgetItem &password;
};

class UserDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override
    {
        Q_UNUSED(option)
        Q_UNUSED(index)
        QLineEdit *edit = newAccountNameEdit(parent);
        edit->setAccessibleName(AccessPage::tr("User"));
        return edit;
    }

    /// A nameless account would let in whoever gives no name: the name stays as it was.
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override
    {
        const auto *edit = qobject_cast<const QLineEdit *>(editor);
        if (edit && !edit->text().isEmpty())
            QStyledItemDelegate::setModelData(editor, model, index);
    }
};

class PasswordDelegate : public QStyledItemDelegate
{
public:
    PasswordDelegate(const bool &shown, QObject *parent)
        : QStyledItemDelegate(parent)
        , visible(shown)
    {
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override
    {
        Q_UNUSED(option)
        Q_UNUSED(index)
        auto *edit = new QLineEdit(parent);
        edit->setAccessibleName(AccessPage::tr("Password"));
        edit->setEchoMode(visible ? QLineEdit::Normal : QLineEdit::Password);
        return edit;
    }

    /// There is nothing to be seen of what is kept as a hash.
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        if (!isPasswordHash(index.data(Qt::EditRole).toString()))
            QStyledItemDelegate::setEditorData(editor, index);
    }

    /// A new password is kept as the old one was. There is none without: that lets in who knows
    /// the name.
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override
    {
        const auto *edit = qobject_cast<const QLineEdit *>(editor);
        const bool isHashed = isPasswordHash(index.data(Qt::EditRole).toString());
        if (!edit || (edit->text().isEmpty() && isHashed))
            return;
        if (edit->text().isEmpty())
            return refuse(editor->window());
        if (!isHashed)
            return QStyledItemDelegate::setModelData(editor, model, index);
        const QByteArray hash = newPasswordHash(edit->text().toUtf8());
        if (!hash.isEmpty())
            model->setData(index, QString::fromLatin1(hash));
    }

private:
    static void refuse(QWidget *window)
    {
        // Queued: the box takes the focus, and with that the editor would be left once more.
        QMetaObject::invokeMethod(
            window,
            [window] {
                showBox(window, QMessageBox::Warning, UserDialog::tr("A user needs a password."));
            },
            Qt::QueuedConnection);
    }

    const bool &visible;
};

} // namespace

AccessPage::AccessPage(Profile *copy)
    : SettingsPage(copy, tr("Authentication Settings"))
    , modes(new ChoiceBox)
    , panels(new QStackedWidget)
{
    modes->addItems({ tr("None"), tr("Password only"), tr("Basic HTTP") });
    modes->setCurrentIndex(workingCopy->authMode);
    modes->setAccessibleName(tr("Authentication mode"));
    for (QWidget *panel : { new QWidget, passwordPanel(), usersPanel() }) {
        panel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        panels->addWidget(panel);
    }
    showPanel(workingCopy->authMode);

    body()->addWidget(modes);
    body()->addWidget(panels);
    addHelpLink(QStringLiteral("auth"));

    connect(modes, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &AccessPage::setMode);
}

QWidget *AccessPage::passwordPanel()
{
    auto *password = new PasswordField;
    if (isPasswordHash(workingCopy->password))
        bindHashed(password->edit());
    else
        bind(password->edit(), &ProfileValues::password);

    auto *panel = new QWidget;
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *form = new QFormLayout;
    layout->addLayout(form);
    layout->addStretch();
    addRow(form, tr("Password") + QLatin1Char(':'), password);
    return panel;
}

/// There is nothing to be seen of what is kept as a hash. A new password is kept as the old one
/// was, once all of it is typed: to make a hash takes a while.
void AccessPage::bindHashed(QLineEdit *edit)
{
    keptHash = workingCopy->password;
    edit->setPlaceholderText(tr("Kept as a hash"));
    connect(edit, &QLineEdit::textChanged, this, [this](const QString &typed) {
        store(&ProfileValues::password, typed.isEmpty() ? keptHash : typed);
    });
    connect(edit, &QLineEdit::editingFinished, this, [this, edit] {
        if (edit->text().isEmpty())
            return;
        const QByteArray hash = newPasswordHash(edit->text().toUtf8());
        if (!hash.isEmpty())
            keptHash = QString::fromLatin1(hash);
        edit->clear();
        if (hash.isEmpty())
            warn(this, UserDialog::tr("There is not enough memory to keep the password."));
    });
}

QWidget *AccessPage::usersPanel()
{
    table = new QTableWidget(0, 3);
    table->setHorizontalHeaderLabels({ tr("User"), tr("Password"), tr("Login") });
    table->setItemDelegateForColumn(UserColumn, new UserDelegate(table));
    table->setItemDelegateForColumn(PasswordColumn, new PasswordDelegate(showPasswords, table));
    table->setAccessibleName(tr("Users"));
    table->setTabKeyNavigation(false); // Tab leaves the table; the arrow keys walk in it
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->setDefaultSectionSize(fingerSize);
    table->verticalHeader()->hide();
    scrollByFinger(table);
    fillTable();

    auto *show = new SwitchBox(tr("Show passwords"));
    QPushButton *add = newBrokenButton(tr("Add user"));
    QPushButton *rights = newBrokenButton(tr("Rights and home"));
    QPushButton *remove = newBrokenButton(tr("Remove user"));

    auto *buttons = new TurningRow;
    for (QPushButton *button : { add, rights, remove })
        buttons->add(button, 1);

    auto *panel = new QWidget;
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(table);
    column->addWidget(show);
    column->addWidget(buttons);

    connect(table, &QTableWidget::itemChanged, this, &AccessPage::storeUsers);
    connect(show, &QCheckBox::toggled, this, &AccessPage::setPasswordsVisible);
    connect(add, &QPushButton::clicked, this, &AccessPage::addUser);
    connect(rights, &QPushButton::clicked, this, &AccessPage::editRights);
    connect(remove, &QPushButton::clicked, this, &AccessPage::removeUser);
    return panel;
}

void AccessPage::fillTable()
{
    for (const QString &account : std::as_const(workingCopy->users))
        appendRow(accountName(account), accountPassword(account));
}

void AccessPage::appendRow(const QString &user, const QString &password)
{
    const QSignalBlocker quiet(table); // half a row is no account
    const int row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, UserColumn, new QTableWidgetItem(user));
    table->item(row, UserColumn)->setData(storedName, user);
    table->setItem(row, PasswordColumn, new PasswordItem(password, showPasswords));
    table->setItem(row, LoginColumn, new LoginItem(*table->item(row, PasswordColumn)));
}

void AccessPage::setMode(int mode)
{
    showPanel(mode);
    store(&ProfileValues::authMode, mode);
}

/// The page is no higher than what it shows needs.
void AccessPage::showPanel(int mode)
{
    panels->currentWidget()->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    panels->setCurrentIndex(mode);
    panels->currentWidget()->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

void AccessPage::addUser()
{
    UserDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    appendRow(dialog.user(), dialog.password());
    table->setCurrentCell(table->rowCount() - 1, UserColumn);
    storeUsers();
}

void AccessPage::removeUser()
{
    const int row = table->currentRow();
    if (row < 0)
        return;
    // Not for somebody who gets the name later.
    auto rights = workingCopy->accountRights;
    rights.remove(table->item(row, UserColumn)->text());
    table->removeRow(row);
    store(&ProfileValues::accountRights, rights);
    storeUsers();
}

void AccessPage::editRights()
{
    const QTableWidgetItem *user = table->item(table->currentRow(), UserColumn);
    if (!user)
        return;
    auto rights = workingCopy->accountRights;
    RightsDialog dialog(RightsDialog::Of::Account, rights.value(user->text()),
                        workingCopy->rightsOfEveryone(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const AccountRights chosen = dialog.chosen();
    if (chosen.rights || !chosen.home.isEmpty())
        rights.insert(user->text(), chosen);
    else
        rights.remove(user->text());
    store(&ProfileValues::accountRights, rights);
}

void AccessPage::storeUsers()
{
    const auto cell = [this](int row, Column column) {
        return table->item(row, column)->data(Qt::EditRole).toString();
    };
    const QSignalBlocker quiet(table);
    QStringList users;
    auto rights = workingCopy->accountRights;
    for (int row = 0; row < table->rowCount(); ++row) {
        QTableWidgetItem *user = table->item(row, UserColumn);
        const QString before = user->data(storedName).toString();
        // Who gets another name keeps the rights.
        if (before != user->text() && rights.contains(before))
            rights.insert(user->text(), rights.take(before));
        user->setData(storedName, user->text());
        users.append(user->text() + separator + cell(row, PasswordColumn));
    }
    store(&ProfileValues::accountRights, rights);
    store(&ProfileValues::users, users);
    table->viewport()->update();
}

void AccessPage::setPasswordsVisible(bool visible)
{
    showPasswords = visible;
    table->viewport()->update();
}

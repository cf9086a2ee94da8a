#include "desktop/settings/RightsDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"

#include <QFile>
#include <QLabel>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr std::array shownRights{ Right::See, Right::Read, Right::Add, Right::Change,
                                  Right::Delete };

} // namespace

RightsDialog::RightsDialog(Of whom, const AccountRights &present, Rights inherited, QWidget *parent)
    : QDialog(parent)
    , others(inherited)
    , owns(present.rights.value_or(inherited))
    , ownBox(new SwitchBox(whom == Of::Account ? tr("Rights of its own") : tr("Rights in detail")))
    , homeEdit(new QLineEdit(QFile::decodeName(present.home)))
{
    setWindowTitle(whom == Of::Account ? tr("Rights and home") : tr("Rights of everyone"));
    homeEdit->setMinimumHeight(fingerSize);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(ownBox);
    for (const QString &name : { tr("See what there is"), tr("Read files"), tr("Add files"),
                                 tr("Change files"), tr("Delete files") }) {
        boxes.push_back(new SwitchBox(name));
        layout->addWidget(boxes.back());
    }
    QLabel *caption = newCaption(tr("Home folder in the share"), homeEdit);
    for (QWidget *each : std::initializer_list<QWidget *>{ caption, homeEdit }) {
        layout->addWidget(each);
        each->setVisible(whom == Of::Account);
    }
    layout->addStretch();
    layout->addWidget(new OkCancelButtons(this));

    ownBox->setChecked(present.rights.has_value());
    showRights(ownBox->isChecked());
    connect(ownBox, &QCheckBox::toggled, this, [this](bool own) {
        if (!own)
            owns = checkedRights();
        showRights(own);
    });
}

void RightsDialog::showRights(bool own)
{
    const Rights shown = own ? owns : others;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        boxes[i]->setChecked(shown.testFlag(shownRights.at(i)));
        boxes[i]->setEnabled(own);
    }
}

Rights RightsDialog::checkedRights() const
{
    Rights rights;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        rights.setFlag(shownRights.at(i), boxes[i]->isChecked());
    return rights;
}

AccountRights RightsDialog::chosen() const
{
    AccountRights account;
    if (ownBox->isChecked())
        account.rights = checkedRights();
    account.home = QFile::encodeName(homeEdit->text().trimmed());
    if (!account.home.isEmpty() && !account.home.startsWith('/'))
        account.home.prepend('/');
    return account;
}

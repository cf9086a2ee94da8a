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

RightsDialog::RightsDialog(const AccountRights &account, Rights inherited, QWidget *parent)
    : QDialog(parent)
    , everyones(inherited)
    , owns(account.rights.value_or(inherited))
    , ownBox(new SwitchBox(tr("Rights of its own")))
    , homeEdit(new QLineEdit(QFile::decodeName(account.home)))
{
    setWindowTitle(tr("Rights and home"));
    homeEdit->setMinimumHeight(fingerSize);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(ownBox);
    for (const QString &name : { tr("See what there is"), tr("Read files"), tr("Add files"),
                                 tr("Change files"), tr("Delete files") }) {
        boxes.push_back(new SwitchBox(name));
        layout->addWidget(boxes.back());
    }
    layout->addWidget(newCaption(tr("Home folder in the share"), homeEdit));
    layout->addWidget(homeEdit);
    layout->addStretch();
    layout->addWidget(new OkCancelButtons(this));

    ownBox->setChecked(account.rights.has_value());
    showRights(ownBox->isChecked());
    connect(ownBox, &QCheckBox::toggled, this, [this](bool own) {
        if (!own)
            owns = checkedRights();
        showRights(own);
    });
}

void RightsDialog::showRights(bool own)
{
    const Rights shown = own ? owns : everyones;
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

AccountRights RightsDialog::account() const
{
    AccountRights chosen;
    if (ownBox->isChecked())
        chosen.rights = checkedRights();
    chosen.home = QFile::encodeName(homeEdit->text().trimmed());
    if (!chosen.home.isEmpty() && !chosen.home.startsWith('/'))
        chosen.home.prepend('/');
    return chosen;
}

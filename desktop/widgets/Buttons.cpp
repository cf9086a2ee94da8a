#include "desktop/widgets/Buttons.h"

#include "desktop/widgets/BrokenWords.h"

#include <QDialog>
#include <QHBoxLayout>

QPushButton *newButton(const QString &text)
{
    auto *button = new Finger<QPushButton>(text);
    button->setAutoDefault(false);
    return button;
}

QPushButton *newBrokenButton(const QString &words)
{
    auto *button = new BrokenWords<QPushButton>(words);
    button->setAutoDefault(false);
    return button;
}

QHBoxLayout *newButtonRow(std::initializer_list<QPushButton *> buttons)
{
    auto *row = new QHBoxLayout;
    row->addStretch();
    for (QPushButton *button : buttons)
        row->addWidget(button);
    return row;
}

OkCancelButtons::OkCancelButtons(QDialog *dialog)
    : QDialogButtonBox(dialog)
    , m_ok(new Finger<QPushButton>(tr("OK")))
{
    addButton(m_ok, AcceptRole);
    addButton(new Finger<QPushButton>(tr("Cancel")), RejectRole);
    m_ok->setDefault(true);
    connect(this, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    connect(this, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
}

#include "desktop/window/AddressDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/QrCode.h"
#include "desktop/widgets/Touch.h"

#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QScreen>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(640, 480);
constexpr int smallScreen = 600; // pixels of the shorter edge

/// Read out as it stands, so it has no other name.
QLabel *newText()
{
    auto *label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

AddressDialog::AddressDialog(const AddressCard &share, const std::optional<AddressCard> &authority,
                             QWidget *parent)
    : QDialog(parent)
    , halves(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , picture(new QrCode)
    , address(newText())
    , facts(newText())
{
    setWindowTitle(tr("Address"));
    QFont large = address->font();
    large.setBold(true);
    address->setFont(large);
    QPushButton *close = newButton(tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto *words = new QVBoxLayout;
    words->addStretch();
    words->addWidget(address);
    words->addWidget(facts);
    words->addStretch();
    if (authority) {
        QPushButton *trust = newButton(tr("Trust this computer"));
        trust->setCheckable(true);
        words->addWidget(trust);
        connect(trust, &QPushButton::toggled, this,
                [this, share, authority](bool on) { turnTo(on ? *authority : share); });
    }
    words->addWidget(close);
    halves->addWidget(picture, 1);
    halves->addLayout(words);
    turnTo(share);

    fitToScreen(this, usualSize);
    const QSize room = screen()->size();
    if (qMin(room.width(), room.height()) < smallScreen)
        setWindowState(Qt::WindowFullScreen);
}

void AddressDialog::turnTo(const AddressCard &card)
{
    picture->encode(card.url);
    address->setText(card.url);
    facts->setText(card.facts);
}

void AddressDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    halves->setDirection(width() > height() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

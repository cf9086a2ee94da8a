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

QLabel *newText(const QString &text, const QString &name)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setAccessibleName(name);
    return label;
}

} // namespace

AddressDialog::AddressDialog(const QString &url, const QString &facts, QWidget *parent)
    : QDialog(parent)
    , halves(new QBoxLayout(QBoxLayout::TopToBottom, this))
{
    setWindowTitle(tr("Address"));
    QLabel *address = newText(url, tr("Address"));
    QFont large = address->font();
    large.setBold(true);
    address->setFont(large);
    address->setWordWrap(false);
    QPushButton *close = newButton(tr("&Close"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto *words = new QVBoxLayout;
    words->addStretch();
    words->addWidget(address);
    words->addWidget(newText(facts, tr("What is shared")));
    words->addStretch();
    words->addWidget(close);
    halves->addWidget(new QrCode(url), 1);
    halves->addLayout(words);

    fitToScreen(this, usualSize);
    const QSize room = screen()->size();
    if (qMin(room.width(), room.height()) < smallScreen)
        setWindowState(Qt::WindowFullScreen);
}

void AddressDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    halves->setDirection(width() > height() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

#include "desktop/look/PagePalette.h"

#include "desktop/look/ColorDialog.h"
#include "desktop/look/PageStyle.h"
#include "desktop/widgets/ConfigPageFields.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr QSize swatchSize(32, 24);

void showColor(QPushButton *button, const QColor &color)
{
    button->setIcon(colorPatch(color, swatchSize));
    button->setAccessibleDescription(color.name());
}

} // namespace

PagePalette::PagePalette(QWidget *parent)
    : QWidget(parent)
{
    QVBoxLayout *body = addFrame(this, tr("Color Settings"));
    const auto add = [this, body](const QString &label, void (PagePalette::*slot)()) {
        auto *added = new Finger<QPushButton>(label);
        added->setAutoDefault(false);
        added->setIconSize(swatchSize);
        body->addWidget(added);
        connect(added, &QPushButton::clicked, this, slot);
        return added;
    };
    background = add(tr("Background"), &PagePalette::setBackground);
    text = add(tr("Text"), &PagePalette::setText);
    button = add(tr("Button"), &PagePalette::setButton);
    add(tr("Set to default"), &PagePalette::setDefault);
    setPalette(QApplication::palette());
}

void PagePalette::setBackground()
{
    choose(QPalette::Window, tr("Background"));
}

void PagePalette::setText()
{
    choose(QPalette::Text, tr("Text"));
}

void PagePalette::setButton()
{
    choose(QPalette::Button, tr("Button"));
}

void PagePalette::choose(QPalette::ColorRole role, const QString &title)
{
    const std::optional<QColor> color = ColorDialog::ask(title, chosen.color(role), this);
    if (!color)
        return;
    QPalette palette = chosen;
    palette.setColor(QPalette::All, role, *color);
    setPalette(palette);
    Q_EMIT configChanged();
}

void PagePalette::setDefault()
{
    setPalette(QApplication::style()->standardPalette());
    Q_EMIT configChanged();
}

void PagePalette::setPalette(const QPalette &palette)
{
    chosen = palette;
    showColor(background, chosen.color(QPalette::Window));
    showColor(text, chosen.color(QPalette::Text));
    showColor(button, chosen.color(QPalette::Button));
}

void PagePalette::apply(QSettings *settings)
{
    // `PageStyle::setPalette` reads these keys into other roles, on purpose.
    const QColor window = chosen.color(QPalette::Window);
    const QColor letters = chosen.color(QPalette::Text);
    settings->beginGroup(PageStyle::currentStyle());
    settings->setValue(QStringLiteral("Cbase"), window);
    settings->setValue(QStringLiteral("Ctext"), letters);
    settings->setValue(QStringLiteral("Cbutton"), chosen.color(QPalette::Button));
    settings->setValue(QStringLiteral("Cwbase"), window);
    settings->setValue(QStringLiteral("Cbtext"), letters);
    settings->endGroup();
}

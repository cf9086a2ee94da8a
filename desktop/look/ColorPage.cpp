#include "desktop/look/ColorPage.h"

#include "desktop/look/ColorDialog.h"
#include "desktop/look/StylePage.h"
#include "desktop/widgets/Fields.h"

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

ColorPage::ColorPage(QWidget *parent)
    : QWidget(parent)
{
    QVBoxLayout *body = addFrame(this, tr("Color Settings"));
    const auto add = [this, body](const QString &label, void (ColorPage::*slot)()) {
        auto *added = new Finger<QPushButton>(label);
        added->setAutoDefault(false);
        added->setIconSize(swatchSize);
        body->addWidget(added);
        connect(added, &QPushButton::clicked, this, slot);
        return added;
    };
    background = add(tr("Background"), &ColorPage::setBackground);
    text = add(tr("Text"), &ColorPage::setText);
    button = add(tr("Button"), &ColorPage::setButton);
    add(tr("Set to default"), &ColorPage::setDefault);
    setPalette(QApplication::palette());
}

void ColorPage::setBackground()
{
    choose(QPalette::Window, tr("Background"));
}

void ColorPage::setText()
{
    choose(QPalette::Text, tr("Text"));
}

void ColorPage::setButton()
{
    choose(QPalette::Button, tr("Button"));
}

void ColorPage::choose(QPalette::ColorRole role, const QString &title)
{
    const std::optional<QColor> color = ColorDialog::ask(title, chosen.color(role), this);
    if (!color)
        return;
    QPalette palette = chosen;
    palette.setColor(QPalette::All, role, *color);
    setPalette(palette);
    Q_EMIT controlChanged();
}

void ColorPage::setDefault()
{
    setPalette(QApplication::style()->standardPalette());
    Q_EMIT controlChanged();
}

void ColorPage::setPalette(const QPalette &palette)
{
    chosen = palette;
    showColor(background, chosen.color(QPalette::Window));
    showColor(text, chosen.color(QPalette::Text));
    showColor(button, chosen.color(QPalette::Button));
}

void ColorPage::apply(QSettings *settings)
{
    // `StylePage::setPalette` reads these keys into other roles, on purpose.
    const QColor window = chosen.color(QPalette::Window);
    const QColor letters = chosen.color(QPalette::Text);
    settings->beginGroup(StylePage::currentStyle());
    settings->setValue(QStringLiteral("Cbase"), window);
    settings->setValue(QStringLiteral("Ctext"), letters);
    settings->setValue(QStringLiteral("Cbutton"), chosen.color(QPalette::Button));
    settings->setValue(QStringLiteral("Cwbase"), window);
    settings->setValue(QStringLiteral("Cbtext"), letters);
    settings->endGroup();
}

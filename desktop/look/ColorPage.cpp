#include "desktop/look/ColorPage.h"

#include "desktop/look/ColorDialog.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"

#include <QApplication>
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

ColorPage::ColorPage()
{
    QVBoxLayout *body = addFrame(this, tr("Color Settings"));
    background = addColor(body, tr("Background"), QPalette::Window);
    text = addColor(body, tr("Text"), QPalette::Text);
    button = addColor(body, tr("Button"), QPalette::Button);
    QPushButton *restore = newButton(tr("Set to default"));
    body->addWidget(restore);
    connect(restore, &QPushButton::clicked, this, &ColorPage::setDefault);
    showColors(false);
}

std::optional<QPalette> ColorPage::colors() const
{
    return isChosen ? std::optional(shown) : std::nullopt;
}

void ColorPage::showColors(bool areChosen)
{
    isChosen = areChosen;
    setColors(QApplication::palette());
}

QPushButton *ColorPage::addColor(QVBoxLayout *body, const QString &name, QPalette::ColorRole role)
{
    QPushButton *added = newButton(name);
    added->setIconSize(swatchSize);
    body->addWidget(added);
    connect(added, &QPushButton::clicked, this, [this, role, name] { choose(role, name); });
    return added;
}

void ColorPage::choose(QPalette::ColorRole role, const QString &title)
{
    const std::optional<QColor> color = ColorDialog::ask(title, shown.color(role), this);
    if (!color)
        return;
    QPalette palette = shown;
    palette.setColor(QPalette::All, role, *color);
    setColors(palette);
    isChosen = true;
    Q_EMIT controlChanged();
}

void ColorPage::setDefault()
{
    isChosen = false;
    setColors(QApplication::style()->standardPalette());
    Q_EMIT controlChanged();
}

void ColorPage::setColors(const QPalette &colors)
{
    shown = colors;
    showColor(background, shown.color(QPalette::Window));
    showColor(text, shown.color(QPalette::Text));
    showColor(button, shown.color(QPalette::Button));
}

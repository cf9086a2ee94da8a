#include "desktop/look/StylePage.h"

#include "desktop/look/ColorPage.h"
#include "desktop/widgets/Fields.h"

#include <QApplication>
#include <QLabel>
#include <QSettings>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleFactory>
#include <QVBoxLayout>

QString StylePage::DefaultStyle;

namespace {

struct ColorKey
{
    const char *key;
    QPalette::ColorRole role;
};

// What `ColorPage::apply` writes under these keys comes from other roles. On purpose: with it
// the base follows the background and the button text the text.
constexpr ColorKey colorKeys[] = {
    { "Cbase", QPalette::Base },     { "Cwbase", QPalette::Window },
    { "Ctext", QPalette::Text },     { "Cbtext", QPalette::ButtonText },
    { "Cbutton", QPalette::Button },
};

} // namespace

StylePage::StylePage(ColorPage *colors, QSettings *stored, QWidget *parent)
    : QWidget(parent)
    , palettePage(colors)
    , settings(stored)
    , styles(new ChoiceBox)
    , inUse(new QLabel)
{
    QVBoxLayout *body = addFrame(this, tr("Style Settings"));
    body->addWidget(styles);
    body->addWidget(inUse);
    for (const char *name : { "plastique", "cleanlooks", "windows", "motif", "cde" })
        styles->addItem(QLatin1String(name));
    styles->setAccessibleName(tr("Style"));
    showCurrentStyle();
    connect(styles, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &StylePage::styleChanged);
}

QString StylePage::currentStyle()
{
    return QApplication::style()->objectName();
}

bool StylePage::isDefaultStyle()
{
    return currentStyle().compare(DefaultStyle, Qt::CaseInsensitive) == 0;
}

void StylePage::setPalette(QPalette *palette, QSettings *settings, const QString &style)
{
    settings->beginGroup(style);
    for (const ColorKey &entry : colorKeys) {
        const auto color = settings->value(QLatin1String(entry.key)).value<QColor>();
        if (color.isValid())
            palette->setColor(QPalette::All, entry.role, color);
    }
    settings->endGroup();
}

void StylePage::styleChanged(int index)
{
    const QString name = styles->itemText(index);
    QStyle *style = QStyleFactory::create(name);
    if (!style) {
        warn(this, name + tr(" style not available on this system."));
        showCurrentStyle();
        return;
    }

    QApplication::setStyle(style);
    QPalette palette = QApplication::style()->standardPalette();
    setPalette(&palette, settings, name);
    palettePage->setPalette(palette);
    QApplication::setPalette(palette);
    showCurrentStyle();
    Q_EMIT controlChanged();
}

void StylePage::showCurrentStyle()
{
    const QSignalBlocker quiet(styles);
    styles->setCurrentIndex(styles->findText(currentStyle(), Qt::MatchFixedString));
    inUse->setText(tr("Style in use: %1").arg(currentStyle()));
}

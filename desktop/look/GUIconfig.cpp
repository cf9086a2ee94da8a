#include "desktop/look/GUIconfig.h"

#include "desktop/look/PageFont.h"
#include "desktop/look/PagePalette.h"
#include "desktop/look/PageStyle.h"
#include "desktop/widgets/ConfigPageFields.h"
#include "desktop/widgets/ConfigPageView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QListWidget>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(560, 420);
constexpr int colorRow = 1;

constexpr auto lastPageKey = "lastP";

} // namespace

GUIconfig::GUIconfig(QWidget *parent)
    : QDialog(parent)
    , view(new ConfigPageView(this))
    , colors(new PagePalette(this))
    , fonts(new PageFont(this))
    , styles(new PageStyle(colors, &settings, this))
    , applyButton(new Finger<QPushButton>(tr("&Apply")))
{
    setWindowTitle(tr("Look&Feel Settings"));
    holdLook();
    view->addPage(tr("Style"), QStringLiteral(":/icons/theme.png"), styles);
    view->addPage(tr("Color"), QStringLiteral(":/icons/colors.png"), colors);
    view->addPage(tr("Font"), QStringLiteral(":/icons/font.png"), fonts);
    view->setCurrentRow(settings.value(QLatin1String(lastPageKey)).toInt());

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(newButtons());

    connect(styles, &PageStyle::configChanged, this, &GUIconfig::configChanged);
    connect(colors, &PagePalette::configChanged, this, &GUIconfig::configChanged);
    connect(fonts, &PageFont::configChanged, this, &GUIconfig::configChanged);
    connect(view->list(), &QListWidget::currentItemChanged, this, &GUIconfig::changePage);

    fitToScreen(this, usualSize);
    // Queued: the warning belongs above the dialog, which is not there yet.
    if (view->currentRow() == colorRow)
        QMetaObject::invokeMethod(this, &GUIconfig::warnAboutColors, Qt::QueuedConnection);
}

QLayout *GUIconfig::newButtons()
{
    auto *cancelButton = new Finger<QPushButton>(tr("&Cancel"));
    cancelButton->setAutoDefault(false);
    applyButton->setDefault(true);
    applyButton->setEnabled(false);
    connect(cancelButton, &QPushButton::clicked, this, &GUIconfig::close);
    connect(applyButton, &QPushButton::clicked, this, &GUIconfig::apply);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(applyButton);
    return buttons;
}

void GUIconfig::changePage(QListWidgetItem *current, QListWidgetItem *previous)
{
    Q_UNUSED(previous)
    if (view->list()->row(current) == colorRow)
        warnAboutColors();
}

void GUIconfig::warnAboutColors()
{
    if (!PageStyle::isDefaultStyle())
        return;
    warn(this, tr("Color settings not working with ") + PageStyle::currentStyle() + tr(" style."));
}

void GUIconfig::configChanged()
{
    applyButton->setEnabled(true);
}

void GUIconfig::apply()
{
    settings.setValue(QLatin1String(PageStyle::styleKey), PageStyle::currentStyle());

    QApplication::setPalette(colors->colors());
    colors->apply(&settings);

    const QFont &font = fonts->chosenFont();
    QApplication::setFont(font);
    settings.setValue(QLatin1String(PageStyle::fontSizeKey), font.pointSize());

    if (PageStyle::isDefaultStyle())
        QApplication::setPalette(QApplication::style()->standardPalette());

    holdLook();
    applyButton->setEnabled(false);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        warn(this, tr("Can't write file: ") + settings.fileName());
}

void GUIconfig::holdLook()
{
    heldStyle = PageStyle::currentStyle();
    heldPalette = QApplication::palette();
}

void GUIconfig::close()
{
    done(Rejected);
}

void GUIconfig::done(int result)
{
    if (PageStyle::currentStyle() != heldStyle) {
        QApplication::setStyle(heldStyle);
        QApplication::setPalette(heldPalette);
    }
    settings.setValue(QLatin1String(lastPageKey), view->currentRow());
    QDialog::done(result);
}

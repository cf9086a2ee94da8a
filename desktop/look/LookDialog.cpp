#include "desktop/look/LookDialog.h"

#include "desktop/look/ColorPage.h"
#include "desktop/look/FontPage.h"
#include "desktop/look/StylePage.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/PageView.h"

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

LookDialog::LookDialog(QWidget *parent)
    : QDialog(parent)
    , view(new PageView(this))
    , colors(new ColorPage(this))
    , fonts(new FontPage(this))
    , styles(new StylePage(colors, &settings, this))
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

    connect(styles, &StylePage::controlChanged, this, &LookDialog::controlChanged);
    connect(colors, &ColorPage::controlChanged, this, &LookDialog::controlChanged);
    connect(fonts, &FontPage::controlChanged, this, &LookDialog::controlChanged);
    connect(view->list(), &QListWidget::currentItemChanged, this, &LookDialog::changePage);

    fitToScreen(this, usualSize);
    // Queued: the warning belongs above the dialog, which is not there yet.
    if (view->currentRow() == colorRow)
        QMetaObject::invokeMethod(this, &LookDialog::warnAboutColors, Qt::QueuedConnection);
}

QLayout *LookDialog::newButtons()
{
    auto *cancelButton = new Finger<QPushButton>(tr("&Cancel"));
    cancelButton->setAutoDefault(false);
    applyButton->setDefault(true);
    applyButton->setEnabled(false);
    connect(cancelButton, &QPushButton::clicked, this, &LookDialog::close);
    connect(applyButton, &QPushButton::clicked, this, &LookDialog::apply);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(applyButton);
    return buttons;
}

void LookDialog::changePage(QListWidgetItem *current, QListWidgetItem *previous)
{
    Q_UNUSED(previous)
    if (view->list()->row(current) == colorRow)
        warnAboutColors();
}

void LookDialog::warnAboutColors()
{
    if (!StylePage::isDefaultStyle())
        return;
    warn(this, tr("Color settings not working with ") + StylePage::currentStyle() + tr(" style."));
}

void LookDialog::controlChanged()
{
    applyButton->setEnabled(true);
}

void LookDialog::apply()
{
    settings.setValue(QLatin1String(StylePage::styleKey), StylePage::currentStyle());

    QApplication::setPalette(colors->colors());
    colors->apply(&settings);

    const QFont &font = fonts->chosenFont();
    QApplication::setFont(font);
    settings.setValue(QLatin1String(StylePage::fontSizeKey), font.pointSize());

    if (StylePage::isDefaultStyle())
        QApplication::setPalette(QApplication::style()->standardPalette());

    holdLook();
    applyButton->setEnabled(false);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        warn(this, tr("Can't write file: ") + settings.fileName());
}

void LookDialog::holdLook()
{
    heldStyle = StylePage::currentStyle();
    heldPalette = QApplication::palette();
}

void LookDialog::close()
{
    done(Rejected);
}

void LookDialog::done(int result)
{
    if (StylePage::currentStyle() != heldStyle) {
        QApplication::setStyle(heldStyle);
        QApplication::setPalette(heldPalette);
    }
    settings.setValue(QLatin1String(lastPageKey), view->currentRow());
    QDialog::done(result);
}

#include "desktop/look/LookDialog.h"

#include "desktop/look/ColorPage.h"
#include "desktop/look/DesktopPage.h"
#include "desktop/look/FontPage.h"
#include "desktop/look/Look.h"
#include "desktop/look/StylePage.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/PageView.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"

#include <QHBoxLayout>
#include <QSettings>
#include <QVBoxLayout>

namespace {

constexpr QSize lookSize(560, 420);
constexpr int colorRow = 1;

const QLatin1String lastPageKey("lastP");

} // namespace

LookDialog::LookDialog(Look *edited, QWidget *parent)
    : QDialog(parent)
    , look(edited)
    , view(new PageView(this))
    , styles(new StylePage(look))
    , colors(new ColorPage)
    , fonts(new FontPage)
    , desktop(new DesktopPage)
    , applyButton(new Finger<QPushButton>(tr("&Apply")))
{
    look->hold();
    colors->showColors(look->hasScheme());
    setWindowTitle(tr("Look&Feel Settings"));
    addPages();

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(newButtons());
    fitToScreen(this, lookSize);

    // Queued: the warning belongs above the dialog, which is not there yet.
    if (view->currentRow() == colorRow)
        QMetaObject::invokeMethod(this, &LookDialog::warnAboutColors, Qt::QueuedConnection);
    connect(view, &PageView::pageTurned, this, &LookDialog::showPage);
}

void LookDialog::addPages()
{
    view->addPage(tr("Style"), QStringLiteral(":/icons/theme.png"), styles);
    view->addPage(tr("Color"), QStringLiteral(":/icons/colors.png"), colors);
    view->addPage(tr("Font"), QStringLiteral(":/icons/font.png"), fonts);
    view->addPage(tr("Desktop"), QStringLiteral(":/icons/preferences-system.png"), desktop);
    view->setCurrentRow(QSettings().value(lastPageKey).toInt());

    connect(styles, &StylePage::styleChanged, this, [this] {
        colors->showColors(look->hasScheme());
        enableApply();
    });
    connect(colors, &ColorPage::controlChanged, this, &LookDialog::enableApply);
    connect(fonts, &FontPage::controlChanged, this, &LookDialog::enableApply);
    connect(desktop, &DesktopPage::controlChanged, this, &LookDialog::enableApply);
}

QLayout *LookDialog::newButtons()
{
    QPushButton *cancelButton = newButton(tr("&Cancel"));
    applyButton->setDefault(true);
    applyButton->setEnabled(false);
    connect(cancelButton, &QPushButton::clicked, this, &LookDialog::reject);
    connect(applyButton, &QPushButton::clicked, this, &LookDialog::apply);
    return newButtonRow({ cancelButton, applyButton });
}

void LookDialog::showPage(int row)
{
    if (row == colorRow)
        warnAboutColors();
}

void LookDialog::warnAboutColors()
{
    if (look->isSystemStyle())
        warn(this, tr("Color settings not working with ") + Look::currentStyle() + tr(" style."));
}

void LookDialog::enableApply()
{
    applyButton->setEnabled(true);
}

void LookDialog::apply()
{
    const bool stored = look->apply(colors->colors(), fonts->chosenFont());
    colors->showColors(look->hasScheme());
    applyButton->setEnabled(false);
    if (!stored)
        warn(this, tr("Can't write file: ") + Look::fileName());
    if (!desktop->choices().store())
        warn(this, tr("What starts after the login can't be changed."));
}

void LookDialog::done(int result)
{
    look->bringBack();
    QSettings().setValue(lastPageKey, view->currentRow());
    QDialog::done(result);
}

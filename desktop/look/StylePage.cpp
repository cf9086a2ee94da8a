#include "desktop/look/StylePage.h"

#include "desktop/look/Look.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Prompts.h"

#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace {

constexpr int ofDesktop = 0; ///< in the list

} // namespace

StylePage::StylePage(Look *tried)
    : look(tried)
    , styles(new ChoiceBox)
    , inUse(new QLabel)
{
    QVBoxLayout *body = addFrame(this, tr("Style Settings"));
    body->addWidget(styles);
    body->addWidget(inUse);
    styles->addItem(tr("As the desktop"));
    for (const char *name : { "plastique", "cleanlooks", "windows", "motif", "cde" })
        styles->addItem(QLatin1String(name));
    styles->setAccessibleName(tr("Style"));
    showCurrentStyle();
    connect(styles, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &StylePage::tryStyle);
}

void StylePage::tryStyle(int index)
{
    const QString name = index == ofDesktop ? QString() : styles->itemText(index);
    const bool taken = look->tryStyle(name);
    if (!taken)
        warn(this, name + tr(" style not available on this system."));
    showCurrentStyle();
    if (taken)
        Q_EMIT styleChanged();
}

void StylePage::showCurrentStyle()
{
    const QSignalBlocker quiet(styles);
    const QString style = Look::currentStyle();
    const QString chosen = look->chosenStyle();
    styles->setCurrentIndex(chosen.isEmpty() ? ofDesktop
                                             : styles->findText(chosen, Qt::MatchFixedString));
    inUse->setText(tr("Style in use: %1").arg(style));
}

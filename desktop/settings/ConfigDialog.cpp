#include "desktop/settings/ConfigDialog.h"

#include "config/Configurable.h"
#include "config/Configuration.h"
#include "desktop/settings/ConfigPageAut.h"
#include "desktop/settings/ConfigPageDNS.h"
#include "desktop/settings/ConfigPageFolder.h"
#include "desktop/settings/ConfigPageServer.h"
#include "desktop/settings/ConfigPageServer2.h"
#include "desktop/widgets/ConfigPageFields.h"
#include "desktop/widgets/ConfigPageView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(640, 520);
constexpr int lastShownPage = -1;

ConfigDialog *openDialog()
{
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        auto *dialog = qobject_cast<ConfigDialog *>(window);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

} // namespace

ConfigDialog::ConfigDialog(Configuration *edited, Configurable *told, QWidget *parent, int page)
    : QDialog(parent)
    , profile(edited)
    , receiver(told)
    , global(edited == Configuration::getGlobalConfig())
    , workingCopy(edited->clone())
    , applyButton(new Finger<QPushButton>(tr("&Apply")))
{
    ConfigPage::conf = workingCopy.get();
    setWindowTitle(tr("Configuration Settings"));
    view = new ConfigPageView(this);
    addPages();
    view->setCurrentRow(page == lastShownPage ? profile->lastPage : page);

    auto *closeButton = new Finger<QPushButton>(tr("&Close"));
    closeButton->setAutoDefault(false);
    applyButton->setDefault(true);
    connect(applyButton, &QPushButton::clicked, this, &ConfigDialog::apply);
    connect(closeButton, &QPushButton::clicked, this, &ConfigDialog::close);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(applyButton);
    buttons->addWidget(closeButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(buttons);

    configChanged();
    fitToScreen(this, usualSize);
}

ConfigDialog::~ConfigDialog()
{
    releaseCopy();
}

void ConfigDialog::edit(Configuration *profile, Configurable *receiver, QWidget *parent, int page)
{
    if (ConfigDialog *open = openDialog()) {
        open->turnTo(profile, page);
        return;
    }
    ConfigDialog dialog(profile, receiver, parent, page);
    dialog.exec();
}

void ConfigDialog::turnTo(const Configuration *edited, int page)
{
    if (profile == edited && page != lastShownPage)
        view->setCurrentRow(page);
}

void ConfigDialog::addPages()
{
    addPage(tr("Folder"), QStringLiteral("folder"), new ConfigPageFolder);
    addPage(tr("Aut."), QStringLiteral("kgpg"), new ConfigPageAut);
    addPage(tr("Server"), QStringLiteral("preferences-network"), new ConfigPageServer);
    if (!global || !profile->expertMode)
        return;
    addPage(tr("DNS"), QStringLiteral("dns"), new ConfigPageDNS);
    addPage(tr("Server2"), {}, new ConfigPageServer2);
}

void ConfigDialog::addPage(const QString &label, const QString &icon, ConfigPage *page)
{
    view->addPage(label, icon.isEmpty() ? icon : QStringLiteral(":/icons/%1.png").arg(icon), page);
    connect(page, &ConfigPage::configChanged, this, &ConfigDialog::configChanged);
}

void ConfigDialog::apply()
{
    receiver->configChanged(workingCopy.get());
    applyButton->setEnabled(false);
}

void ConfigDialog::configChanged()
{
    applyButton->setEnabled(!workingCopy->equals(profile));
}

void ConfigDialog::close()
{
    done(Rejected);
}

void ConfigDialog::done(int result)
{
    profile->lastPage = view->currentRow();
    if (!profile->save()) {
        warn(this,
             tr("Can't write file: ") + profile->fileName() + QLatin1Char('\n')
                 + tr("The settings stay in use until the program ends."));
    }
    QDialog::done(result);
    releaseCopy();
}

void ConfigDialog::releaseCopy()
{
    if (!workingCopy)
        return;
    ConfigPage::conf = nullptr;
    workingCopy.reset();
}

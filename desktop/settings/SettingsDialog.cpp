#include "desktop/settings/SettingsDialog.h"

#include "config/Configurable.h"
#include "config/Profile.h"
#include "desktop/settings/AccessPage.h"
#include "desktop/settings/DnsPage.h"
#include "desktop/settings/FolderPage.h"
#include "desktop/settings/LimitsPage.h"
#include "desktop/settings/ServerPage.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/PageView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

constexpr QSize usualSize(640, 520);
constexpr int lastShownPage = -1;

SettingsDialog *openDialog()
{
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        auto *dialog = qobject_cast<SettingsDialog *>(window);
        if (dialog && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

} // namespace

SettingsDialog::SettingsDialog(Profile *edited, SettingsScope offered, Configurable *told,
                               QWidget *parent, int page)
    : QDialog(parent)
    , profile(edited)
    , receiver(told)
    , scope(offered)
    , workingCopy(edited->clone())
    , applyButton(new Finger<QPushButton>(tr("&Apply")))
{
    SettingsPage::conf = workingCopy.get();
    setWindowTitle(tr("Profile Settings"));
    view = new PageView(this);
    addPages();
    view->setCurrentRow(page == lastShownPage ? profile->lastPage : page);

    auto *closeButton = new Finger<QPushButton>(tr("&Close"));
    closeButton->setAutoDefault(false);
    applyButton->setDefault(true);
    connect(applyButton, &QPushButton::clicked, this, &SettingsDialog::apply);
    connect(closeButton, &QPushButton::clicked, this, &SettingsDialog::close);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(applyButton);
    buttons->addWidget(closeButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(buttons);

    controlChanged();
    fitToScreen(this, usualSize);
}

SettingsDialog::~SettingsDialog()
{
    releaseCopy();
}

void SettingsDialog::edit(Profile *profile, SettingsScope scope, Configurable *receiver,
                          QWidget *parent, int page)
{
    if (SettingsDialog *open = openDialog()) {
        open->turnTo(profile, page);
        return;
    }
    SettingsDialog dialog(profile, scope, receiver, parent, page);
    dialog.exec();
}

void SettingsDialog::turnTo(const Profile *edited, int page)
{
    if (profile == edited && page != lastShownPage)
        view->setCurrentRow(page);
}

void SettingsDialog::addPages()
{
    addPage(tr("Folder"), QStringLiteral("folder"), new FolderPage);
    addPage(tr("Aut."), QStringLiteral("kgpg"), new AccessPage);
    addPage(tr("Server"), QStringLiteral("preferences-network"), new ServerPage(scope.rootMode));
    if (!scope.global || !profile->expertMode)
        return;
    addPage(tr("DNS"), QStringLiteral("dns"), new DnsPage);
    addPage(tr("Server2"), {}, new LimitsPage);
}

void SettingsDialog::addPage(const QString &label, const QString &icon, SettingsPage *page)
{
    view->addPage(label, icon.isEmpty() ? icon : QStringLiteral(":/icons/%1.png").arg(icon), page);
    connect(page, &SettingsPage::controlChanged, this, &SettingsDialog::controlChanged);
}

void SettingsDialog::apply()
{
    receiver->profileEdited(workingCopy.get());
    applyButton->setEnabled(false);
}

void SettingsDialog::controlChanged()
{
    applyButton->setEnabled(!workingCopy->equals(profile));
}

void SettingsDialog::close()
{
    done(Rejected);
}

void SettingsDialog::done(int result)
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

void SettingsDialog::releaseCopy()
{
    if (!workingCopy)
        return;
    SettingsPage::conf = nullptr;
    workingCopy.reset();
}

#include "desktop/settings/SettingsDialog.h"

#include "config/Profile.h"
#include "desktop/settings/AccessPage.h"
#include "desktop/settings/Configurable.h"
#include "desktop/settings/DnsPage.h"
#include "desktop/settings/FolderPage.h"
#include "desktop/settings/LimitsPage.h"
#include "desktop/settings/ServerPage.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/PageView.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

constexpr QSize settingsSize(640, 520);
constexpr int lastShownPage = -1;

enum Unapplied { Apply = 0, Discard = 1 }; ///< what to do with changes, in the order of the buttons

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
    , view(new PageView(this))
    , applyButton(new Finger<QPushButton>(tr("&Apply")))
{
    // A file that could not be read gives no name.
    setWindowTitle(tr("Configuration Settings")
                   + (profile->name.isEmpty() ? QString() : QLatin1String(": ") + profile->name));
    addPages();
    view->setCurrentRow(page == lastShownPage ? profile->lastPage : page);

    QPushButton *closeButton = newButton(tr("&Close"));
    applyButton->setDefault(true);
    connect(applyButton, &QPushButton::clicked, this, &SettingsDialog::apply);
    connect(closeButton, &QPushButton::clicked, this, &SettingsDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(newButtonRow({ applyButton, closeButton }));

    enableApply();
    fitToScreen(this, settingsSize);
}

SettingsDialog::~SettingsDialog()
{
    delete view; // its pages write into the working copy as long as they are there
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
    addPage(tr("Folder"), QStringLiteral("folder"), new FolderPage(workingCopy.get()));
    addPage(tr("Aut."), QStringLiteral("kgpg"), new AccessPage(workingCopy.get()));
    addPage(tr("Server"), QStringLiteral("preferences-network"),
            new ServerPage(workingCopy.get(), scope.rootMode));
    if (!scope.global || !profile->expertMode)
        return;
    addPage(tr("DNS"), QStringLiteral("dns"), new DnsPage(workingCopy.get()));
    addPage(tr("Server2"), {}, new LimitsPage(workingCopy.get()));
}

void SettingsDialog::addPage(const QString &label, const QString &icon, SettingsPage *page)
{
    view->addPage(label, icon.isEmpty() ? icon : QStringLiteral(":/icons/%1.png").arg(icon), page);
    connect(page, &SettingsPage::controlChanged, this, &SettingsDialog::enableApply);
}

/// What is still being edited is taken over when its field is left.
void SettingsDialog::takeOverTyped()
{
    if (QWidget *field = focusWidget()) {
        field->clearFocus();
        field->setFocus();
    }
}

void SettingsDialog::apply()
{
    takeOverTyped();
    receiver->profileEdited(workingCopy.get());
    isApplied = true;
    applyButton->setEnabled(false);
}

void SettingsDialog::enableApply()
{
    applyButton->setEnabled(!workingCopy->equals(profile) || !profile->isUsable());
}

void SettingsDialog::reject()
{
    takeOverTyped();
    const bool isOpen = !workingCopy->equals(profile);
    const int chosen = isOpen ? askOneOf(this, tr("There are changes that were not applied."),
                                         { tr("&Apply"), tr("&Discard") })
                              : Discard;
    if (chosen != Apply && chosen != Discard)
        return;
    if (chosen == Apply)
        apply();
    QDialog::reject();
}

void SettingsDialog::done(int result)
{
    profile->lastPage = view->currentRow();
    // The defaults in the place of a file that can't be used are nobody's choice until applied.
    const bool isChosen = isApplied || profile->isUsable();
    if (isChosen && !profile->save()) {
        warn(this,
             tr("Can't write file: ") + profile->fileInTheWay() + QLatin1Char('\n')
                 + tr("The settings stay in use until the program ends."));
    }
    QDialog::done(result);
}

#include "desktop/settings/FolderPage.h"

#include "desktop/settings/RightsDialog.h"
#include "desktop/widgets/Buttons.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

FolderPage::FolderPage(Profile *copy)
    : SettingsPage(copy, tr("Folder View Settings"))
{
    addCheckBox(tr("Show images"), &ProfileValues::showImages);
    deleting = addCheckBox(tr("Enable deleting"), &ProfileValues::enableDelete);
    addCheckBox(tr("Show folders"), &ProfileValues::showFolders);
    uploading = addCheckBox(tr("Enable upload"), &ProfileValues::enableUpload);
    overruled = new QLabel(tr("Instead of deleting and upload the rights of everyone hold. Where "
                              "they differ from these two, browsers are refused unless the mode "
                              "\"Standard\" is chosen: page \"Server\", \"Answers\"."));
    overruled->setWordWrap(true);
    body()->addWidget(overruled);
    QPushButton *rights = newBrokenButton(tr("Rights of everyone"));
    body()->addWidget(rights, 0, Qt::AlignLeft);
    addHelpLink(QStringLiteral("folder"));

    connect(rights, &QPushButton::clicked, this, &FolderPage::editRights);
    showWhatHolds();
}

void FolderPage::editRights()
{
    RightsDialog dialog(RightsDialog::Of::Everyone, { workingCopy->everyone, {} },
                        workingCopy->switchedRights(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    store(&ProfileValues::everyone, dialog.chosen().rights);
    showWhatHolds();
}

void FolderPage::showWhatHolds()
{
    const bool switched = !workingCopy->everyone;
    deleting->setEnabled(switched);
    uploading->setEnabled(switched);
    overruled->setVisible(!switched);
}

#include "desktop/settings/FolderPage.h"

FolderPage::FolderPage(Profile *copy)
    : SettingsPage(copy, tr("Folder View Settings"))
{
    addCheckBox(tr("Show images"), &ProfileValues::showImages);
    addCheckBox(tr("Enable deleting"), &ProfileValues::enableDelete);
    addCheckBox(tr("Show folders"), &ProfileValues::showFolders);
    addCheckBox(tr("Enable upload"), &ProfileValues::enableUpload);
    addHelpLink(QStringLiteral("folder"));
}

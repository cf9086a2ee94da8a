#include "desktop/settings/FolderPage.h"

FolderPage::FolderPage(QWidget *parent)
    : SettingsPage(tr("Folder View Settings"), parent)
{
    addCheckBox(tr("Show images"), &ProfileValues::showImages);
    addCheckBox(tr("Enable deleting"), &ProfileValues::enableDelete);
    addCheckBox(tr("Show folders"), &ProfileValues::showFolders);
    addCheckBox(tr("Enable upload"), &ProfileValues::enableUpload);
    addHelpLink(QStringLiteral("folder"));
}

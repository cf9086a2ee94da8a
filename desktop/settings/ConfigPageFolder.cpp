#include "desktop/settings/ConfigPageFolder.h"

ConfigPageFolder::ConfigPageFolder(QWidget *parent)
    : ConfigPage(tr("Folder View Settings"), parent)
{
    addCheckBox(tr("Show images"), &ProfileValues::showImages);
    addCheckBox(tr("Enable deleting"), &ProfileValues::enableDelete);
    addCheckBox(tr("Show folders"), &ProfileValues::showFolders);
    addCheckBox(tr("Enable upload"), &ProfileValues::enableUpload);
    addHelpLink(QStringLiteral("folder"));
}

#pragma once

#include "desktop/settings/SettingsPage.h"

/// The settings of what browsers see of a share and may change in it.
/// A child of the settings dialog.
class FolderPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit FolderPage(Profile *copy);
};

#pragma once

#include "desktop/settings/SettingsPage.h"

class QLabel;

/// The settings of what browsers see of a share and may change in it.
/// A child of the settings dialog.
class FolderPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit FolderPage(Profile *copy);

private:
    void editRights();
    void showWhatHolds();

    QCheckBox *deleting;
    QCheckBox *uploading;
    QLabel *overruled; ///< tells that these two don't hold
};

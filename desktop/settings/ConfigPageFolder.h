#pragma once

#include "desktop/settings/ConfigPage.h"

/// The settings of what browsers see of a share and may change in it.
/// A child of the settings dialog.
class ConfigPageFolder : public ConfigPage
{
    Q_OBJECT

public:
    explicit ConfigPageFolder(QWidget *parent = nullptr);
};

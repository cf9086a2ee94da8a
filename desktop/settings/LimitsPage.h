#pragma once

#include "desktop/settings/SettingsPage.h"

/// The limits of a server. A child of the settings dialog of the global profile.
class LimitsPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit LimitsPage(Profile *copy);
};

#pragma once

#include "desktop/settings/SettingsPage.h"

/// The settings of the dynamic-DNS account. A child of the settings dialog of the global profile.
class DnsPage : public SettingsPage
{
    Q_OBJECT

public:
    explicit DnsPage(Profile *copy);
};

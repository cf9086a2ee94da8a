#pragma once

#include "desktop/settings/ConfigPage.h"

/// The settings of the dynamic-DNS account. A child of the settings dialog of the global profile.
class ConfigPageDNS : public ConfigPage
{
    Q_OBJECT

public:
    explicit ConfigPageDNS(QWidget *parent = nullptr);
};

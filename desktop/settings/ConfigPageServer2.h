#pragma once

#include "desktop/settings/ConfigPage.h"

/// The limits of a server. A child of the settings dialog of the global profile.
class ConfigPageServer2 : public ConfigPage
{
    Q_OBJECT

public:
    explicit ConfigPageServer2(QWidget *parent = nullptr);
};

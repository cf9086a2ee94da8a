#pragma once

#include "desktop/settings/SettingsPage.h"

class QFormLayout;
class QLineEdit;
class QSpinBox;

/// The settings of port, SSL mode and keys. A child of the settings dialog.
class ServerPage : public SettingsPage
{
    Q_OBJECT

public:
    /// In root mode the ports of HTTP and HTTPS go with the SSL switch.
    ServerPage(Profile *copy, bool rootMode);

private:
    struct KeyFile;

    void addKeyControls(QFormLayout *form);
    QLineEdit *addKeyFile(QFormLayout *form, const KeyFile &file);
    void enableKeyControls();
    void followSslMode(int state);
    void restoreKeys();

    const bool usesOwnPorts;
    QSpinBox *port = nullptr;
    QLineEdit *privateKey = nullptr;
    QLineEdit *keyPassword = nullptr;
    QLineEdit *publicKey = nullptr;
    QList<QWidget *> keyControls; ///< of use only to experts who serve through SSL
};

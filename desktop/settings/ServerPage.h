#pragma once

#include "desktop/settings/SettingsPage.h"

class QFormLayout;
class QLineEdit;
class QSpinBox;
class QToolButton;

/// The settings of port, SSL mode and keys. A child of the settings dialog.
class ServerPage : public SettingsPage
{
    Q_OBJECT

public:
    /// In root mode the ports of HTTP and HTTPS go with the SSL switch.
    explicit ServerPage(bool rootMode, QWidget *parent = nullptr);

private Q_SLOTS:
    void setSslMode(int state);
    void setPrivateKey(const QString &path);
    void setPublicKey(const QString &path);
    void browsePrivateKey();
    void browsePublicKey();
    void restoreKeys();

private:
    void addKeyControls(QFormLayout *form);
    void enableKeyControls();

    const bool usesOwnPorts;
    QSpinBox *port = nullptr;
    QLineEdit *privateKey = nullptr;
    QLineEdit *keyPassword = nullptr;
    QLineEdit *publicKey = nullptr;
    QList<QWidget *> keyControls; ///< of use only to experts who serve through SSL
};

#pragma once

#include "desktop/settings/ConfigPage.h"

class QFormLayout;
class QLineEdit;
class QSpinBox;
class QToolButton;

/// The settings of port, SSL mode and keys. A child of the settings dialog.
class ConfigPageServer : public ConfigPage
{
    Q_OBJECT

public:
    explicit ConfigPageServer(QWidget *parent = nullptr);

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

    QSpinBox *port = nullptr;
    QLineEdit *privateKey = nullptr;
    QLineEdit *keyPassword = nullptr;
    QLineEdit *publicKey = nullptr;
    QList<QWidget *> keyControls; ///< of use only to experts who serve through SSL
};

#pragma once

#include "desktop/settings/SettingsPage.h"

class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// The settings of port, SSL mode, keys, the way of answering, and being found. A child of the
/// settings dialog.
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
    void addFaceControls();
    void addFindingControls();
    void setFace(int mode);
    void enableKeyControls();
    void followSslMode(int state);
    void restoreKeys();
    void useKeys(const QString &keyFile, const QString &certificateFile);
    void makeKey();
    void showCertificate();

    const bool usesOwnPorts;
    QSpinBox *port = nullptr;
    QLineEdit *privateKey = nullptr;
    QLineEdit *keyPassword = nullptr;
    QLineEdit *publicKey = nullptr;
    QLabel *certificate = nullptr; ///< its fingerprint and names
    QPushButton *newKey = nullptr;
    QLabel *faceText = nullptr; ///< what the chosen way of answering means
    QList<QWidget *> keyControls; ///< of use only to experts who serve through SSL
};

#include "desktop/settings/ServerPage.h"

#include "desktop/widgets/Fields.h"

#include <QFileDialog>
#include <QFormLayout>
#include <QVBoxLayout>

namespace {

// Less than the label promises, as it always was.
constexpr int highestPort = 65000;
constexpr QSize browseIconSize(32, 32);
constexpr QSize usualSize(640, 440); // of the file dialog
constexpr int httpPort = 80;
constexpr int httpsPort = 443;

QToolButton *browseButton(const QString &name)
{
    auto *button = new Finger<QToolButton>;
    button->setIcon(fileIcon(QStringLiteral(":/icons/find.png")));
    button->setIconSize(browseIconSize);
    if (button->icon().isNull())
        button->setText(QStringLiteral("..."));
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

/// The path of an existing file, empty when the user gives none. The search starts beside `path`.
QString askForFile(QWidget *parent, const QString &title, const QString &path,
                   const QString &filter)
{
    QFileDialog dialog(parent, title, QFileInfo(path).path(), filter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    sizeForFingers(&dialog);
    fitToScreen(&dialog, usualSize);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

ServerPage::ServerPage(bool rootMode, QWidget *parent)
    : SettingsPage(tr("Server Settings"), parent)
    , usesOwnPorts(rootMode)
{
    addCheckBox(tr("Show warning messages"), &ProfileValues::warningMode);
    QCheckBox *ssl = addCheckBox(tr("SSL/Secure Mode"), &ProfileValues::sslMode);

    auto *portField = new StepField(1, highestPort);
    port = portField->spinBox();
    bind(port, &ProfileValues::port);

    QFormLayout *form = addForm();
    addRow(form, tr("Port [1 - 65535]:"), portField, QStringLiteral("port"));
    addKeyControls(form);

    auto *restore = new Finger<QPushButton>(tr("Restore default keys"));
    restore->setAutoDefault(false);
    body()->addWidget(restore, 0, Qt::AlignLeft);

    connect(ssl, &QCheckBox::stateChanged, this, &ServerPage::setSslMode);
    connect(restore, &QPushButton::clicked, this, &ServerPage::restoreKeys);
    enableKeyControls();
}

void ServerPage::addKeyControls(QFormLayout *form)
{
    // Made in the order of the rows, which the Tab key follows.
    privateKey = new Finger<QLineEdit>;
    privateKey->setText(conf->privateKeyFile);
    QToolButton *findPrivate = browseButton(tr("Browse for the private key"));
    addRow(form, tr("Private key:"), privateKey, QStringLiteral("privkey"), findPrivate);

    auto *password = new PasswordField;
    keyPassword = password->edit();
    bind(keyPassword, &ProfileValues::keyPassword);
    addRow(form, tr("Password:"), password, QStringLiteral("passwd"));

    publicKey = new Finger<QLineEdit>;
    publicKey->setText(conf->publicKeyFile);
    QToolButton *findPublic = browseButton(tr("Browse for the public key"));
    addRow(form, tr("Public key:"), publicKey, QStringLiteral("pubkey"), findPublic);

    keyControls = { privateKey, findPrivate, password, publicKey, findPublic };

    connect(privateKey, &QLineEdit::textChanged, this, &ServerPage::setPrivateKey);
    connect(publicKey, &QLineEdit::textChanged, this, &ServerPage::setPublicKey);
    connect(findPrivate, &QToolButton::clicked, this, &ServerPage::browsePrivateKey);
    connect(findPublic, &QToolButton::clicked, this, &ServerPage::browsePublicKey);
}

void ServerPage::enableKeyControls()
{
    const bool enable = conf->usesTls() && conf->expertMode;
    for (QWidget *control : std::as_const(keyControls))
        control->setEnabled(enable);
}

void ServerPage::setSslMode(int state)
{
    if (!conf)
        return;
    if (usesOwnPorts) {
        const int usual = state == Qt::Checked ? httpsPort : httpPort;
        port->setValue(usual);
        store(&ProfileValues::port, usual);
    }
    enableKeyControls();
}

void ServerPage::setPrivateKey(const QString &path)
{
    if (!path.isEmpty() && path != privateKey->text())
        privateKey->setText(path);
    store(&ProfileValues::privateKeyFile, path);
}

void ServerPage::setPublicKey(const QString &path)
{
    if (!path.isEmpty() && path != publicKey->text())
        publicKey->setText(path);
    store(&ProfileValues::publicKeyFile, path);
}

void ServerPage::browsePrivateKey()
{
    const QString filter = tr("Private Key") + QLatin1String(" (*.key *.csr)");
    const QString path = askForFile(this, tr("Open Private Key File"), privateKey->text(), filter);
    if (!path.isEmpty())
        setPrivateKey(path);
}

void ServerPage::browsePublicKey()
{
    const QString filter = tr("Public Key") + QLatin1String(" (*.pub *.crx *.crt *.cer)");
    const QString path = askForFile(this, tr("Open Public Key File"), publicKey->text(), filter);
    if (!path.isEmpty())
        setPublicKey(path);
}

void ServerPage::restoreKeys()
{
    if (!conf)
        return;
    conf->resetKeys();
    keyPassword->clear();
    privateKey->setText(conf->privateKeyFile);
    publicKey->setText(conf->publicKeyFile);
    Q_EMIT controlChanged();
}

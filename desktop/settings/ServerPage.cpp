#include "desktop/settings/ServerPage.h"

#include "desktop/settings/KeyMaker.h"
#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Fields.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/TurningRow.h"
#include "platform/Announcement.h"

#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <array>

namespace {

// Less than the label promises, as it always was.
constexpr int highestPort = 65000;

QToolButton *browseButton(const QString &name)
{
    auto *button = new Finger<QToolButton>;
    button->setIcon(QIcon(QStringLiteral(":/icons/find.png")));
    button->setIconSize(buttonPicture);
    button->setAccessibleName(name);
    button->setToolTip(name);
    return button;
}

} // namespace

/// One of the two key files, as the user meets it.
struct ServerPage::KeyFile
{
    QString caption;
    QString helpName;
    QString browse; ///< names the button that opens the chooser
    QString title; ///< of the chooser
    QString filter;
    QString ProfileValues::*path;
};

ServerPage::ServerPage(Profile *copy, bool rootMode)
    : SettingsPage(copy, tr("Server Settings"))
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

    certificate = new QLabel;
    certificate->setTextFormat(Qt::PlainText);
    certificate->setWordWrap(true);
    certificate->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    body()->addWidget(certificate);
    QPushButton *restore = newBrokenButton(tr("Restore default keys"));
    newKey = newBrokenButton(tr("Make new key..."));
    auto *buttons = new TurningRow;
    buttons->add(restore, 1);
    buttons->add(newKey, 1);
    body()->addWidget(buttons);
    addFaceControls();
    addFindingControls();

    connect(ssl, &QCheckBox::stateChanged, this, &ServerPage::followSslMode);
    connect(restore, &QPushButton::clicked, this, &ServerPage::restoreKeys);
    connect(newKey, &QPushButton::clicked, this, &ServerPage::makeKey);
    connect(publicKey, &QLineEdit::textChanged, this, &ServerPage::showCertificate);
    showCertificate();
    enableKeyControls();
}

void ServerPage::addKeyControls(QFormLayout *form)
{
    // Made in the order of the rows, which the Tab key follows.
    privateKey = addKeyFile(form,
                            { tr("Private key:"), QStringLiteral("privkey"),
                              tr("Browse for the private key"), tr("Open Private Key File"),
                              tr("Private Key") + QLatin1String(" (*.key *.csr)"),
                              &ProfileValues::privateKeyFile });

    auto *password = new PasswordField;
    keyPassword = password->edit();
    bind(keyPassword, &ProfileValues::keyPassword);
    addRow(form, tr("Password:"), password, QStringLiteral("passwd"));
    keyControls.append(password);

    publicKey = addKeyFile(form,
                           { tr("Public key:"), QStringLiteral("pubkey"),
                             tr("Browse for the public key"), tr("Open Public Key File"),
                             tr("Public Key") + QLatin1String(" (*.pub *.crx *.crt *.cer)"),
                             &ProfileValues::publicKeyFile });
}

QLineEdit *ServerPage::addKeyFile(QFormLayout *form, const KeyFile &file)
{
    auto *path = new Finger<QLineEdit>;
    bind(path, file.path);
    QToolButton *browse = browseButton(file.browse);
    addRow(form, file.caption, path, file.helpName, browse);
    keyControls.append(path);
    keyControls.append(browse);
    connect(browse, &QToolButton::clicked, path, [path, title = file.title, filter = file.filter] {
        const QString chosen = choosePath(path->window(), PathKind::File, title,
                                          QFileInfo(path->text()).path(), filter);
        if (!chosen.isEmpty())
            path->setText(chosen);
    });
    return path;
}

void ServerPage::addFaceControls()
{
    auto *faces = new ChoiceBox;
    faces->addItems({ tr("Classic"), tr("Automatic"), tr("Standard") });
    faces->setCurrentIndex(workingCopy->faceMode);
    faceText = new QLabel;
    faceText->setWordWrap(true);
    addRow(addForm(), tr("Answers:"), faces);
    body()->addWidget(faceText);
    connect(faces, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &ServerPage::setFace);
    setFace(workingCopy->faceMode);
}

void ServerPage::addFindingControls()
{
    auto *found = new SwitchBox(tr("Announce in the network"));
    found->setChecked(workingCopy->announced != 0);
    auto *name = new Finger<QLineEdit>;
    bind(name, &ProfileValues::announcedName);
    name->setPlaceholderText(Announcement().nameOrDefault());
    name->setEnabled(found->isChecked());
    body()->addWidget(found);
    addRow(addForm(), tr("Found as:"), name);
    connect(found, &QCheckBox::toggled, this, [this, name](bool on) {
        name->setEnabled(on);
        store(&ProfileValues::announced, qint32(on));
    });
}

void ServerPage::setFace(int mode)
{
    const std::array texts = {
        tr("All programs are answered as ever."),
        tr("File managers, phone apps and players that are known to need it are answered by the "
           "standards, all others as ever."),
        tr("All programs are answered by the standards; browsers get the web application."),
    };
    faceText->setText(texts.at(std::size_t(mode)));
    store(&ProfileValues::faceMode, mode);
}

void ServerPage::enableKeyControls()
{
    const bool enable = workingCopy->usesTls() && workingCopy->expertMode;
    for (QWidget *control : std::as_const(keyControls))
        control->setEnabled(enable);
}

void ServerPage::followSslMode(int state)
{
    if (usesOwnPorts)
        port->setValue(state == Qt::Checked ? httpsPort : httpPort);
    enableKeyControls();
}

void ServerPage::restoreKeys()
{
    const Profile usual(workingCopy->directories());
    useKeys(usual.privateKeyFile, usual.publicKeyFile);
}

void ServerPage::useKeys(const QString &keyFile, const QString &certificateFile)
{
    keyPassword->clear();
    privateKey->setText(keyFile);
    publicKey->setText(certificateFile);
}

void ServerPage::makeKey()
{
    if (!askYesNo(
            window(),
            tr("A new key and certificate are made for this computer; those in use stay where "
               "they are. Browsers will warn once more, but not on devices that trust the "
               "authority of the new one. Make them?")))
        return;
    newKey->setEnabled(false);
    auto *maker = new KeyMaker(workingCopy->directories().profiles, this);
    connect(maker, &KeyMaker::made, this, &ServerPage::useKeys);
    connect(maker, &KeyMaker::failed, this, [this](const QString &why) { warn(window(), why); });
    connect(maker, &QObject::destroyed, newKey, [button = newKey] { button->setEnabled(true); });
    maker->start();
}

void ServerPage::showCertificate()
{
    const QString facts = certificateFacts(publicKey->text());
    certificate->setText(facts.isEmpty() ? tr("There is no certificate yet.") : facts);
}

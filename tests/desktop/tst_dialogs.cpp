#include "config/Configurable.h"
#include "desktop/settings/ProfileDialog.h"
#include "desktop/settings/ProfileUser.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/settings/SettingsPage.h"
#include "desktop/settings/UserDialog.h"
#include "desktop/widgets/InputDialog.h"
#include "desktop/widgets/MessageDialog.h"
#include "tests/desktop/Widgets.h"
#include "tests/support/LiveServer.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTableWidget>
#include <QToolButton>

namespace {

struct Receiver : Configurable
{
    explicit Receiver(Profile *profile)
        : live(profile)
    {
    }

    void profileEdited(Profile *edited) override
    {
        ++calls;
        live->apply(edited);
    }

    Profile *live;
    int calls = 0;
};

class Item : public QObject, public ProfileUser
{
public:
    explicit Item(Profile *first)
        : used(first)
    {
    }

    Profile *profile() const override { return used; }
    void useProfile(Profile *other) override { used = other; }

    Profile *used;
};

/// Types `text` into the line that `action` asks for.
template <typename Action> void answer(Action action, const char *text)
{
    inModal<InputDialog>(action, [&text](InputDialog *asking) {
        QCOMPARE(asking->windowTitle(), QStringLiteral("Profile name"));
        retype(named<QLineEdit>(asking, "Profile name"), QString::fromLatin1(text));
        QTest::keyClick(asking, Qt::Key_Return);
    });
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

class tst_Dialogs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(icons); }
    void init();
    void cleanup();

    void showsThePages_data();
    void showsThePages();
    void checkBoxesEditTheirFields_data();
    void checkBoxesEditTheirFields();
    void numbersEditTheirFields_data();
    void numbersEditTheirFields();
    void textsEditTheirFields_data();
    void textsEditTheirFields();
    void sslSwitchSetsThePortInRootMode();
    void keysAreForExpertsWithSsl();
    void browsesForKeys();
    void authenticationModeShowsItsPanel();
    void editsUsers();
    void hidesPasswords();
    void savesHoweverItIsClosed();
    void saysWhenItCantSave();
    void opensOnlyOnce();
    void showsHelp();
    void makesAndTakesProfiles();
    void removesOnlyUnusedProfiles();
    void givesUpWithItsItem();
    void fitsSmallScreens_data() { SmallScreens::addSizes(); }
    void fitsSmallScreens();

private:
    Profile *addProfile(const QString &name);
    void open(int page = -1);
    QWidget *page() const { return dialog->findChild<QStackedWidget *>()->currentWidget(); }
    bool canApply() const { return named<QPushButton>(dialog.get(), "&Apply")->isEnabled(); }

    std::unique_ptr<TestHome> home;
    Profile *global = nullptr;
    bool rootMode = false;
    std::unique_ptr<Receiver> receiver;
    std::unique_ptr<SettingsDialog> dialog;
};

void tst_Dialogs::init()
{
    home = std::make_unique<TestHome>();
    global = home->profiles->global();
    global->expertMode = true;
    receiver = std::make_unique<Receiver>(global);
}

void tst_Dialogs::cleanup()
{
    dialog.reset();
    rootMode = false;
    home.reset();
}

Profile *tst_Dialogs::addProfile(const QString &name)
{
    Profile *profile = home->profiles->add(global->clone());
    profile->setFileName(name);
    profile->name = name;
    profile->save();
    return profile;
}

void tst_Dialogs::open(int page)
{
    dialog.reset();
    dialog = std::make_unique<SettingsDialog>(receiver->live,
                                              SettingsScope{ receiver->live == global, rootMode },
                                              receiver.get(), nullptr, page);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
}

void tst_Dialogs::showsThePages_data()
{
    QTest::addColumn<bool>("isGlobal");
    QTest::addColumn<bool>("expert");
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("labels");
    QTest::addColumn<int>("shown");
    QTest::newRow("experts get all of the global profile; the page asked for is shown")
        << true << true << 1 << 3 << "Folder,Aut.,Server,DNS,Server2" << 1;
    QTest::newRow("others get three pages; the first is shown when the last is gone")
        << true << false << -1 << 9 << "Folder,Aut.,Server" << 0;
    QTest::newRow("another profile has three pages; the last one is shown again")
        << false << true << -1 << 2 << "Folder,Aut.,Server" << 2;
}

void tst_Dialogs::showsThePages()
{
    QFETCH(bool, isGlobal);
    QFETCH(bool, expert);
    QFETCH(int, asked);
    QFETCH(int, last);
    global->expertMode = expert;
    receiver->live = isGlobal ? global : addProfile(QStringLiteral("work"));
    receiver->live->lastPage = last;
    open(asked);

    QStringList labels;
    const auto *list = dialog->findChild<QListWidget *>();
    for (int row = 0; row < list->count(); ++row)
        labels.append(list->item(row)->text());
    QTEST(labels.join(QLatin1Char(',')), "labels");
    QTEST(list->currentRow(), "shown");
    QTEST(dialog->findChild<QStackedWidget *>()->currentIndex(), "shown");
    QCOMPARE(dialog->windowTitle(), QStringLiteral("Profile Settings"));
    QVERIFY(!canApply());
}

using Number = qint32 ProfileValues::*;
using Text = QString ProfileValues::*;
Q_DECLARE_METATYPE(Number)
Q_DECLARE_METATYPE(Text)

void tst_Dialogs::checkBoxesEditTheirFields_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<Number>("field");
    QTest::newRow("Show images") << 0 << Number(&ProfileValues::showImages);
    QTest::newRow("Enable deleting") << 0 << Number(&ProfileValues::enableDelete);
    QTest::newRow("Show folders") << 0 << Number(&ProfileValues::showFolders);
    QTest::newRow("Enable upload") << 0 << Number(&ProfileValues::enableUpload);
    QTest::newRow("Show warning messages") << 2 << Number(&ProfileValues::warningMode);
    QTest::newRow("SSL/Secure Mode") << 2 << Number(&ProfileValues::sslMode);
    QTest::newRow("Enable DNS Service") << 3 << Number(&ProfileValues::dnsEnabled);
}

void tst_Dialogs::checkBoxesEditTheirFields()
{
    QFETCH(int, row);
    QFETCH(Number, field);
    open(row);
    const qint32 before = global->*field;
    auto *box = named<QCheckBox>(page(), QTest::currentDataTag());
    QCOMPARE(box->isChecked(), before == 2);

    // Not on its text: the whole row is a target.
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(box->width() - 3, 3));
    QCOMPARE(SettingsPage::conf->*field, before == 2 ? 0 : 2);
    QCOMPARE(global->*field, before);
    QVERIFY(canApply());

    QTest::keyClick(box, Qt::Key_Space);
    QCOMPARE(SettingsPage::conf->*field, before);
    QVERIFY(!canApply());
}

void tst_Dialogs::numbersEditTheirFields_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("name");
    QTest::addColumn<Number>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("taken");
    const Number port = &ProfileValues::port;
    const Number lifetime = &ProfileValues::sessionLifetime;
    QTest::newRow("lowest port") << 2 << "Port [1 - 65535]:" << port << "1" << 1;
    QTest::newRow("highest port") << 2 << "Port [1 - 65535]:" << port << "65000" << 65000;
    QTest::newRow("one port too many") << 2 << "Port [1 - 65535]:" << port << "65001" << 6500;
    QTest::newRow("no connection")
        << 4 << "Max. Connections:" << Number(&ProfileValues::maxConnections) << "0" << 1;
    QTest::newRow("a gigabyte and more")
        << 4 << "Network traffic limit [KB]:" << Number(&ProfileValues::dataLimit) << "1000000000"
        << 1000000000;
    QTest::newRow("too short a session") << 4 << "Session lifetime [s]:" << lifetime << "59" << 60;
    QTest::newRow("longest session")
        << 4 << "Session lifetime [s]:" << lifetime << "10000" << 10000;
}

void tst_Dialogs::numbersEditTheirFields()
{
    QFETCH(int, row);
    QFETCH(QString, name);
    QFETCH(Number, field);
    QFETCH(QString, typed);
    open(row);
    auto *box = named<QSpinBox>(page(), name);
    QCOMPARE(box->value(), global->*field);
    retype(box, typed);
    QTest::keyClick(box, Qt::Key_Tab);
    QTEST(SettingsPage::conf->*field, "taken");
    QTEST(box->value(), "taken");
    QVERIFY(canApply());

    box->setValue(global->*field + 1);
    click(box->parentWidget(), "Less");
    QCOMPARE(SettingsPage::conf->*field, global->*field);
}

void tst_Dialogs::textsEditTheirFields_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("name");
    QTest::addColumn<Text>("field");
    QTest::newRow("password of the page") << 1 << "Password:" << Text(&ProfileValues::password);
    QTest::newRow("private key") << 2 << "Private key:" << Text(&ProfileValues::privateKeyFile);
    QTest::newRow("pass phrase") << 2 << "Password:" << Text(&ProfileValues::keyPassword);
    QTest::newRow("public key") << 2 << "Public key:" << Text(&ProfileValues::publicKeyFile);
    QTest::newRow("DNS user") << 3 << "User:" << Text(&ProfileValues::dnsUser);
    QTest::newRow("DNS password") << 3 << "Password:" << Text(&ProfileValues::dnsPassword);
}

void tst_Dialogs::textsEditTheirFields()
{
    QFETCH(int, row);
    QFETCH(QString, name);
    QFETCH(Text, field);
    global->authMode = AuthPasswordPage;
    global->sslMode = 2;
    global->*field = QStringLiteral("before");
    open(row);
    auto *edit = named<QLineEdit>(page(), name);
    QCOMPARE(edit->text(), QStringLiteral("before"));
    retype(edit, QStringLiteral("a new one"));
    QCOMPARE(SettingsPage::conf->*field, QStringLiteral("a new one"));
    QVERIFY(canApply());
    retype(edit, QStringLiteral("before"));
    QVERIFY(!canApply());
}

void tst_Dialogs::sslSwitchSetsThePortInRootMode()
{
    rootMode = true;
    open(2);
    const auto *port = named<QSpinBox>(page(), "Port [1 - 65535]:");
    for (int expected : { 443, 80 }) {
        click(page(), "SSL/Secure Mode");
        QCOMPARE(port->value(), expected);
        QCOMPARE(SettingsPage::conf->port, expected);
    }
}

void tst_Dialogs::keysAreForExpertsWithSsl()
{
    for (bool expert : { true, false }) {
        global->expertMode = expert;
        open(2);
        for (bool ssl : { true, false }) {
            click(page(), "SSL/Secure Mode");
            for (const char *name : { "Private key:", "Password:", "Public key:",
                                      "Browse for the private key", "Browse for the public key" })
                QCOMPARE(named<QWidget>(page(), name)->isEnabled(), expert && ssl);
        }
    }
}

void tst_Dialogs::browsesForKeys()
{
    global->sslMode = 2;
    global->privateKeyFile = global->publicKeyFile = home->path() + QLatin1String("/old.key");
    global->keyPassword = QStringLiteral("secret");
    open(2);
    QFile file(home->path() + QLatin1String("/new.key"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const auto browse = [&](const char *button, const char *titleAndFilter) {
        inModal<QFileDialog>([&] { click(page(), button); },
                             [&](QFileDialog *chooser) {
                                 QCOMPARE(chooser->windowTitle()
                                              + chooser->nameFilters().join(QString()),
                                          QLatin1String(titleAndFilter));
                                 QCOMPARE(chooser->directory().path(), home->path());
                                 chooser->selectFile(file.fileName());
                                 static_cast<QDialog *>(chooser)->accept();
                             });
    };
    browse("Browse for the private key", "Open Private Key FilePrivate Key (*.key *.csr)");
    QCOMPARE(SettingsPage::conf->privateKeyFile, file.fileName());
    browse("Browse for the public key", "Open Public Key FilePublic Key (*.pub *.crx *.crt *.cer)");
    QCOMPARE(SettingsPage::conf->publicKeyFile, file.fileName());

    click(page(), "Restore default keys");
    const QString key = home->directories.resources + QLatin1String("server.key");
    QCOMPARE(named<QLineEdit>(page(), "Private key:")->text(), key);
    QCOMPARE(SettingsPage::conf->privateKeyFile, key);
    QCOMPARE(SettingsPage::conf->publicKeyFile,
             home->directories.resources + QLatin1String("server.crt"));
    QCOMPARE(SettingsPage::conf->keyPassword, QString());
}

void tst_Dialogs::authenticationModeShowsItsPanel()
{
    open(1);
    auto *modes = page()->findChild<QComboBox *>();
    qint32 mode = AuthNone;
    for (const char *label : { "None", "Password only", "Basic HTTP" }) {
        QCOMPARE(modes->currentText(), QLatin1String(label));
        QCOMPARE(SettingsPage::conf->authMode, mode);
        QCOMPARE(named<QLineEdit>(page(), "Password:")->isVisible(), mode == AuthPasswordPage);
        QCOMPARE(page()->findChild<QTableWidget *>()->isVisible(), mode == AuthBasic);
        QTest::keyClick(modes, Qt::Key_Down);
        ++mode;
    }
}

void tst_Dialogs::editsUsers()
{
    global->authMode = AuthBasic;
    global->users = words("anna:pass:word bert:");
    open(1);
    auto *table = page()->findChild<QTableWidget *>();
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("anna"));
    QCOMPARE(table->item(0, 1)->data(Qt::EditRole).toString(), QStringLiteral("pass:word"));
    table->item(1, 1)->setData(Qt::EditRole, QStringLiteral("x"));
    QCOMPARE(SettingsPage::conf->users, words("anna:pass:word bert:x"));

    const auto add = [this] { click(page(), "Add user"); };
    inModal<UserDialog>(add, [](UserDialog *asking) {
        QVERIFY(!named<QPushButton>(asking, "OK")->isEnabled());
        retype(named<QLineEdit>(asking, "User"), QStringLiteral("c:arl"));
        retype(named<QLineEdit>(asking, "Password"), QStringLiteral("p:q"));
        click(asking, "OK");
    });
    QCOMPARE(SettingsPage::conf->users, words("anna:pass:word bert:x carl:p:q"));
    table->setCurrentCell(1, 0);
    click(page(), "Remove user");
    inModal<UserDialog>(add, [](UserDialog *asking) { QTest::keyClick(asking, Qt::Key_Escape); });
    QCOMPARE(SettingsPage::conf->users, words("anna:pass:word carl:p:q"));
}

void tst_Dialogs::hidesPasswords()
{
    global->authMode = AuthBasic;
    global->users = words("anna:secret");
    open(1);
    int hidden = 0;
    const auto edits = dialog->findChildren<QLineEdit *>();
    for (const QLineEdit *edit : edits)
        hidden += edit->accessibleName() == QLatin1String("Password:")
            && edit->echoMode() == QLineEdit::Password;
    QCOMPARE(hidden, 3);
    auto *edit = named<QLineEdit>(page(), "Password:");
    named<QToolButton>(edit->parentWidget(), "Show password")->click();
    QCOMPARE(edit->echoMode(), QLineEdit::Normal);

    const auto *cell = page()->findChild<QTableWidget *>()->item(0, 1);
    QVERIFY(!cell->text().contains(QLatin1String("secret")));
    click(page(), "Show passwords");
    QCOMPARE(cell->text(), QStringLiteral("secret"));
    QVERIFY(!canApply());
}

void tst_Dialogs::savesHoweverItIsClosed()
{
    using Close = std::function<void(QDialog *)>;
    for (const auto &closeIt :
         { Close([](QDialog *it) { click(it, "&Close"); }),
           Close([](QDialog *it) { QTest::keyClick(it, Qt::Key_Escape); }),
           Close([](QDialog *it) { it->QWidget::close(); }) /* the window manager */ }) {
        QFile::remove(global->fileName());
        open(0);
        click(page(), "Show images"); // but not applied
        dialog->findChild<QListWidget *>()->setCurrentRow(2);
        closeIt(dialog.get());
        QVERIFY(!dialog->isVisible());
        QVERIFY(!SettingsPage::conf);
        QCOMPARE(receiver->calls, 0);
        const Profile stored(home->directories, QStringLiteral("Global.conf"));
        QVERIFY(stored.equals(global));
        QCOMPARE(stored.showImages, 2);
        QCOMPARE(global->lastPage, 2);
    }
}

void tst_Dialogs::saysWhenItCantSave()
{
    open(0);
    click(page(), "Show images");
    click(dialog.get(), "&Apply");
    QCOMPARE(receiver->calls, 1);
    QCOMPARE(global->showImages, 0);
    QVERIFY(!canApply());

    QVERIFY(QDir(home->directories.profiles).removeRecursively());
    const QString text = boxText([this] { click(dialog.get(), "&Close"); });
    QVERIFY2(text.startsWith(QLatin1String("Can't write file: ") + global->fileName()),
             qPrintable(text));
    QVERIFY(!dialog->isVisible());
    QVERIFY(QDir().mkpath(home->directories.profiles));
}

void tst_Dialogs::opensOnlyOnce()
{
    const auto edit = [this](int page) {
        SettingsDialog::edit(global, { true, false }, receiver.get(), nullptr, page);
    };
    inModal<SettingsDialog>([&] { edit(1); },
                            [&](SettingsDialog *first) {
                                const Profile *copy = SettingsPage::conf;
                                edit(3);
                                QCOMPARE(SettingsPage::conf, copy);
                                click(first, "&Close");
                            });
    QCOMPARE(global->lastPage, 3); // the window that was there turned to it
}

void tst_Dialogs::showsHelp()
{
    const auto helpOf = [this](const QString &name) {
        QString shown;
        inModal<MessageDialog>([&] { page()->findChild<QToolButton *>(name)->click(); },
                               [&](MessageDialog *help) {
                                   shown = help->windowTitle() + help->text();
                                   QTest::keyClick(help, Qt::Key_Escape);
                               });
        return shown;
    };
    int row = 0;
    QString path;
    for (const char *names :
         { "folder", "auth", "port privkey passwd pubkey", "dns", "connections limit lifetime" }) {
        open(row++);
        for (const QString &name : words(names)) {
            path = home->directories.language + QStringLiteral("help/%1.html").arg(name);
            QCOMPARE(helpOf(name), QLatin1String("HelpCan't read file: ") + path);
        }
    }
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<h1>Gr\u00f6\u00dfe</h1>");
    file.close();
    QCOMPARE(helpOf(QStringLiteral("lifetime")), QStringLiteral("HelpGr\u00f6\u00dfe"));
}

void tst_Dialogs::makesAndTakesProfiles()
{
    global->users = words("anna:x");
    addProfile(QStringLiteral("taken"));
    QFile broken(home->directories.profiles + QLatin1String("broken.cnf"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    for (const char *name : { "../evil", "a/b", "..", ".work", "  ", "a\nb", "taken", "Default",
                              "broken" /* a file that is no profile */ })
        QVERIFY2(!ProfileDialog::refusal(*home->profiles, QString::fromLatin1(name)).isEmpty(),
                 name);
    QVERIFY(!ProfileDialog::refusal(*home->profiles, QString(201, QLatin1Char('x'))).isEmpty());
    QVERIFY(!ProfileDialog::refusal(*home->profiles, QString(101, QChar(0xe4)))
                 .isEmpty()); // too many bytes

    Item item(global);
    ProfileDialog chooser(home->profiles.get(), &item, nullptr);
    chooser.show();
    QCOMPARE(chooser.windowTitle(), QStringLiteral("Change Profile"));
    const auto *list = chooser.findChild<QComboBox *>();
    QCOMPARE(list->currentText(), QStringLiteral("Default"));
    const auto create = [&chooser] { click(&chooser, "New profile"); };
    answer(create, "");
    QVERIFY(!boxText([&] { answer(create, "../evil"); }).isEmpty());
    QVERIFY(!QFile::exists(home->path() + QLatin1String("/evil.cnf")));
    QCOMPARE(home->profiles->count(), 2);

    answer(create, "work 1");
    QCOMPARE(list->currentText(), QStringLiteral("work 1"));
    Profile *made = home->profiles->at(2);
    const Profile stored(home->directories, QFileInfo(made->fileName()).fileName());
    QVERIFY(stored.equals(made));
    QCOMPARE(stored.users, global->users);
    QCOMPARE(item.used, global);
    click(&chooser, "OK");
    QCOMPARE(item.used, made);
}

void tst_Dialogs::removesOnlyUnusedProfiles()
{
    Profile *work = addProfile(QStringLiteral("work"));
    const QString file = work->fileName();
    Item item(work);
    work->useCount = 1;
    ProfileDialog chooser(home->profiles.get(), &item, nullptr);
    chooser.show();
    auto *list = chooser.findChild<QComboBox *>();
    const auto remove = [&chooser] { click(&chooser, "Remove profile"); };
    for (int row : { 1, 0 }) { // the used one and the global one
        list->setCurrentIndex(row);
        QCOMPARE(boxText(remove), QStringLiteral("Used config profile is not removable."));
    }
    QVERIFY(QFile::exists(file) && QFile::exists(global->fileName()));

    list->setCurrentIndex(1);
    work->useCount = 0;
    QVERIFY(QFile::remove(file));
    remove();
    QCOMPARE(home->profiles->count(), 2);
    work->save();
    remove();
    QVERIFY(!QFile::exists(file));
    QCOMPARE(home->profiles->count(), 1);
}

void tst_Dialogs::givesUpWithItsItem()
{
    auto item = std::make_unique<Item>(global);
    ProfileDialog chooser(home->profiles.get(), item.get(), nullptr);
    inModal<ProfileDialog>([&] { QCOMPARE(chooser.exec(), int(QDialog::Rejected)); },
                           [&](ProfileDialog *) { item.reset(); });
}

void tst_Dialogs::fitsSmallScreens()
{
    QFETCH(QSize, size);
    const auto look = [&size](QDialog *window, const QString &picture) {
        window->show();
        QCOMPARE(SmallScreens::faultsAt(window, size, picture), QByteArray());
    };
    global->sslMode = 2;
    global->users = words("anna:x bert:y");
    for (qint32 mode : { AuthNone, AuthPasswordPage, AuthBasic }) {
        global->authMode = mode;
        for (int row = mode == AuthBasic ? 0 : 1; row < (mode == AuthBasic ? 5 : 2); ++row) {
            open(row);
            look(dialog.get(), QStringLiteral("settings-%1-%2").arg(row).arg(mode));
        }
    }
    dialog->close();
    Item item(global);
    ProfileDialog chooser(home->profiles.get(), &item, nullptr);
    look(&chooser, QStringLiteral("profile"));
    UserDialog user(nullptr);
    look(&user, QStringLiteral("user"));
    InputDialog input(QStringLiteral("Profile name"), {}, nullptr);
    look(&input, QStringLiteral("input"));
    MessageDialog message(QStringLiteral("Help"), QStringLiteral("<h1>Help</h1>"), nullptr);
    look(&message, QStringLiteral("message"));
}

QTEST_MAIN(tst_Dialogs)
#include "tst_dialogs.moc"

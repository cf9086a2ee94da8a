#include "desktop/look/Look.h"
#include "desktop/look/LookDialog.h"
#include "desktop/look/Scheme.h"
#include "desktop/settings/Configurable.h"
#include "desktop/settings/ProfileDialog.h"
#include "desktop/settings/ProfileUser.h"
#include "desktop/settings/SettingsDialog.h"
#include "server/PasswordHash.h"
#include "tests/desktop/Widgets.h"
#include "tests/support/LiveServer.h"

#include <QFileDialog>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyle>
#include <QTableWidget>

namespace {

struct Item : QObject, ProfileUser
{
    Profile *profile() const override { return used; }
    void useProfile(Profile *other) override { used = other; }
    Profile *used = nullptr;
};

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

class tst_Dialogs : public QObject, public Configurable
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        Q_INIT_RESOURCE(icons);
        home = std::make_unique<TestHome>();
        QCoreApplication::setOrganizationName("Quillon-Test"_q);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home->path());
        global = home->profiles->global();
        global->expertMode = true;
    }

    void cleanup()
    {
        dialog.reset();
        scope.rootMode = false;
        QApplication::setStyle(atStart);
        QApplication::setPalette(QApplication::style()->standardPalette());
        QApplication::setFont(font);
        home.reset();
    }

    void appliesWhatThePagesSay()
    {
        global->sslMode = 2;
        QFont large = font;
        large.setPointSize(24);
        for (const auto &[letters, name] : { std::pair(large, "large-%1"_q), { font, "%1"_q } }) {
            QApplication::setFont(letters);
            for (int row = 0; row < 5; ++row) {
                global->lastPage = row;
                open();
                QCOMPARE(dialog->findChild<QStackedWidget *>()->currentIndex(), row);
                SmallScreens::check(dialog.get(), "settings-"_q + name.arg(row));
            }
        }
        turnTo(0); // where rights of everyone overrule two of the boxes
        const auto ask = [this] { click(page(), "Rights of everyone"); };
        fillIn(ask, { "Rights in detail", "Read files", "OK" }, "rights-of-everyone"_q);
        QCOMPARE(rightsText(*applied()->everyone), QByteArray("see, add, change, delete"));
        QVERIFY(!named<QWidget>(page(), "Enable upload")->isEnabled());
        SmallScreens::check(dialog.get(), "settings-0-rights"_q);
        fillIn(ask, { "Rights in detail", "OK" });
        QVERIFY(!applied()->everyone && named<QWidget>(page(), "Enable upload")->isEnabled());
        global->expertMode = false;
        open(); // there is no such row now, the first one is shown
        auto *box = named<QWidget>(page(), "Enable deleting");
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(box->width() - 3, 3)); // not on its text
        QCOMPARE(applied()->enableDelete, 0);
        turnTo(2);
        auto *port = named<QSpinBox>(page(), "Port [1 - 65535]:");
        retype(port, "65001"); // the last digit is refused
        QCOMPARE(applied()->port, 6500);
    }

    void setsPortAndKeys()
    {
        scope.rootMode = true;
        global->sslMode = 2;
        for (bool expert : { false, true }) {
            global->expertMode = expert;
            open(2);
            for (bool ssl : { false, true }) {
                click(page(), "SSL/Secure Mode");
                QCOMPARE(applied()->port, ssl ? 443 : 80);
                for (const char *name :
                     { "Private key:", "Password:", "Browse for the public key" })
                    QCOMPARE(named<QWidget>(page(), name)->isEnabled(), expert && ssl);
            }
        }
        retype(named<QWidget>(page(), "Password:"), "secret");
        const QString file = home->path() + "/new.key"_q;
        writeFile(file, {});
        for (const char *button : { "Browse for the private key", "Browse for the public key" })
            inModal<QFileDialog>([&] { click(page(), button); },
                                 [&](QFileDialog *chooser) {
                                     chooser->selectFile(file);
                                     static_cast<QDialog *>(chooser)->accept();
                                 });
        QCOMPARE(applied()->privateKeyFile, file);
        QCOMPARE(applied()->publicKeyFile, file);
        QCOMPARE(applied()->keyPassword, "secret"_q);
        boxText([&] { click(page(), "Make new key..."); }, QMessageBox::Yes);
        const auto *make = named<QPushButton>(page(), "Make new key...");
        QVERIFY(!make->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(make->isEnabled(), 20000);
        QVERIFY(applied()->privateKeyFile == home->directories.profiles + "server.key"_q);
        QVERIFY(applied()->publicKeyFile == home->directories.profiles + "server.crt"_q);
        QVERIFY(applied()->keyPassword.isEmpty());
        click(page(), "Announce in the network");
        retype(named<QWidget>(page(), "Found as:"), "films");
        QVERIFY(applied()->announced == 1 && applied()->announcedName == QLatin1String("films"));
        for (const char *passed : { "Port [1 - 65535]:", "Answers:" }) {
            auto *field = named<QWidget>(page(), passed);
            QWheelEvent scrolling({}, field->mapToGlobal(QPoint()), {}, { 0, -120 }, Qt::NoButton,
                                  Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(field, &scrolling);
        }
        QVERIFY(applied()->port == 443 && applied()->faceMode == FaceAuto);
    }

    void editsUsers()
    {
        global->users = words("anna:pass:word bert:");
        open(1);
        auto *table = page()->findChild<QTableWidget *>();
        const auto *password = named<QLineEdit>(page(), "Password:");
        for (qint32 mode : { AuthPasswordPage, AuthBasic }) {
            QTest::keyClick(page()->findChild<QComboBox *>(), Qt::Key_Down);
            QCOMPARE(applied()->authMode, mode);
            QCOMPARE(password->isVisible(), mode == AuthPasswordPage);
            QCOMPARE(table->isVisible(), mode == AuthBasic);
            SmallScreens::check(dialog.get(), "settings-1-%1"_q.arg(mode));
        }
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        QVERIFY(!table->item(0, 1)->text().contains("pass"_q));
        click(page(), "Show passwords");
        QCOMPARE(table->item(0, 1)->text(), "pass:word"_q);
        table->item(1, 1)->setData(Qt::EditRole, "x"_q);
        const auto add = [this] { click(page(), "Add user"); };
        const auto refusal = [&] { fillIn(add, { "User=dora", "OK" }, "user"_q); };
        QCOMPARE(boxText(refusal), "A user needs a password."_q);
        fillIn(add, { "Password=p:q", "OK", "User=c:arl", "Keep readable for Digest", "OK" });
        QCOMPARE(applied()->users, words("anna:pass:word bert:x carl:p:q"));
        retypeCell(2, 0, {}); // a name can't be taken away
        QCOMPARE(table->item(2, 0)->text(), "carl"_q);
        QCOMPARE(boxText([this] { retypeCell(0, 1, {}); }), "A user needs a password."_q);
        table->setCurrentCell(1, 0);
        click(page(), "Remove user");
        QCOMPARE(applied()->users, words("anna:pass:word carl:p:q"));

        fillIn(add, { "User=dora", "Password=s", "OK" });
        const auto stored = [this] { return accountPassword(applied()->users.at(2)).toLatin1(); };
        QVERIFY(fitsPasswordHash("s", stored()) == true);
        QCOMPARE(table->item(1, 2)->text(), "Digest, Basic"_q);
        QCOMPARE(table->item(2, 2)->text(), "Basic"_q);
        retypeCell(2, 1, "t"_q); // a new one is hashed too
        QTRY_VERIFY(fitsPasswordHash("t", stored()) == true);
        table->setCurrentCell(2, 0);
        fillIn([this] { click(page(), "Rights and home"); },
               { "Delete files", "Rights of its own", "Delete files",
                 "Home folder in the share=d d", "OK" },
               "rights"_q);
        table->item(2, 0)->setText("dolly"_q);
        const auto rights = applied()->accountRights;
        QCOMPARE(rights.keys(), QStringList("dolly"_q));
        QCOMPARE(rights.first().home, QByteArray("/d d"));
        QCOMPARE(rightsText(rights.first().rights.value_or(Rights())),
                 QByteArray("see, read, add, change"));
        click(page(), "Remove user");
        QVERIFY(applied()->accountRights.isEmpty());
        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        edit(0, 0)->setText("alma"_q); // and closed while it is typed
        fillIn([this] { dialog->close(); }, { "&Apply" });
        QCOMPARE(global->users, words("alma:pass:word carl:p:q"));
    }

    void keepsAPasswordHashed()
    {
        global->authMode = AuthPasswordPage;
        global->password = QString::fromLatin1(newPasswordHash("old"));
        open(1);
        auto *password = named<QLineEdit>(page(), "Password:");
        QVERIFY(password->text().isEmpty());
        retype(password, "new");
        for (const char *then : { "typed", "and emptied again" }) {
            QVERIFY2(fitsPasswordHash("new", applied()->password.toLatin1()) == true, then);
            retype(password, "x");
            QTest::keyClick(password, Qt::Key_Backspace);
        }
    }

    void savesHoweverItIsClosed()
    {
        QFile::remove(global->fileName());
        open(0);
        click(page(), "Show images"); // but not applied
        turnTo(2);
        const auto escape = [this] { QTest::keyClick(dialog.get(), Qt::Key_Escape); };
        for (const bool discards : { false, true }) {
            inModal<QMessageBox>(escape, [discards](QMessageBox *box) {
                discards ? click(box, "&Discard") : QTest::keyClick(box, Qt::Key_Escape);
            });
            QCOMPARE(dialog->isVisible(), !discards);
        }
        QVERIFY(QFile::exists(global->fileName()));
        QCOMPARE(Profile(home->directories, "Global.conf"_q).showImages, 2);
        QCOMPARE(global->lastPage, 2);
        open(0);
        click(page(), "Show images");
        fillIn([this] { dialog->close(); }, { "&Apply" });
        QCOMPARE(global->showImages, 0);
        // What nobody has looked at opens nothing.
        home->writeProfile("Global.conf"_q, "junk");
        QVERIFY(!global->load());
        open();
        escape();
        QCOMPARE(home->profileBytes("Global.conf"_q), QByteArray("junk"));
        open();
        click(dialog.get(), "&Apply");
        escape();
        QVERIFY(Profile(home->directories, "Global.conf"_q).isUsable());
        open();
        QVERIFY(QDir(home->directories.profiles).removeRecursively());
        const QString told = boxText([this] { click(dialog.get(), "&Close"); });
        QVERIFY(told.startsWith("Can't write file: "_q + global->fileName()));
    }

    void makesTakesAndRemovesProfiles()
    {
        home->writeProfile("broken.cnf"_q, {});
        for (const char *name : { "", "a/b", "..", ".work", "  ", "a\nb", "Default", "broken" })
            QVERIFY(!ProfileDialog::refusal(*home->profiles, QLatin1String(name)).isEmpty());
        QVERIFY(!ProfileDialog::refusal(*home->profiles, QString(101, QChar(0xe4))).isEmpty());
        auto item = std::make_unique<Item>();
        item->used = global;
        show<ProfileDialog>(home->profiles.get(), item.get(), nullptr);
        SmallScreens::check(dialog.get(), "profile"_q);
        const auto name = [this](const char *button, const QByteArray &typed) {
            fillIn([&] { click(dialog.get(), button); }, { "Profile name=" + typed, "OK" });
        };
        for (const char *button : { "New profile", "Rename profile", "Duplicate profile" })
            QVERIFY(!boxText([&] { name(button, "../evil"); }).isEmpty());
        name("New profile", "work");
        fillIn([this] { click(dialog.get(), "Duplicate profile"); }, { "OK" }); // as proposed
        QCOMPARE(home->profiles->count(), 3);
        boxText([this] { click(dialog.get(), "Remove profile"); });
        dialog->findChild<QComboBox *>()->setCurrentText("work"_q);
        QVERIFY(!boxText([&] { name("Rename profile", "Default"); }).isEmpty());
        name("Rename profile", "work 1");
        QCOMPARE(dialog->findChild<QComboBox *>()->currentText(), "work 1"_q);
        QCOMPARE(home->profiles->count(), 2);
        Profile *made = home->profiles->at(1);
        const QString file = made->fileName();
        QVERIFY(Profile(home->directories, QFileInfo(file).fileName()).equals(made));
        click(dialog.get(), "OK");
        QCOMPARE(item->used, made);
        show<ProfileDialog>(home->profiles.get(), item.get(), nullptr);
        const auto remove = [this] { click(dialog.get(), "Remove profile"); };
        made->useCount = 1;
        QCOMPARE(boxText(remove), "Used config profile is not removable."_q);
        made->useCount = 0;
        QVERIFY(boxText(remove, QMessageBox::No).contains("work 1"_q));
        QVERIFY(QFile::exists(file));
        boxText(remove);
        QVERIFY(!QFile::exists(file));
        QCOMPARE(home->profiles->count(), 1);
        QVERIFY(!boxText(remove).isEmpty()); // the program itself uses the global one
        item.reset();
        QVERIFY(!dialog->isVisible());
    }

    void takesTheStoredLook()
    {
        QSettings settings;
        settings.setValue("windows/Cbtext"_q, QColor(Qt::red));
        settings.setValue("Fsize"_q, 17);
        Look().takeStored();
        QCOMPARE(QApplication::font(), font); // without a style nothing counts
        settings.setValue("style"_q, "windows"_q);
        Look look;
        look.takeStored();
        QCOMPARE(Look::currentStyle(), "windows"_q);
        QCOMPARE(shown(QPalette::ButtonText), QColor(Qt::red));
        QVERIFY(QApplication::palette().color(QPalette::Disabled, QPalette::ButtonText)
                != QColor(Qt::red));
        QCOMPARE(QApplication::font().pointSize(), 17);
        QVERIFY(look.apply({}, QApplication::font())); // without colours those of the desktop
        QVERIFY(!settings.contains("windows/Cwbase"_q));
        QVERIFY(shown(QPalette::ButtonText) != QColor(Qt::red));
        settings.setValue("Fsize"_q, 4000); // past all use
        settings.setValue("style"_q, "no such style"_q);
        Look().takeStored();
        QCOMPARE(QApplication::font().pointSize(), 17);
    }

    void schemesCanBeRead()
    {
        const QColor dark(0x20, 0x22, 0x26);
        for (const SchemeColors &colors : { SchemeColors{ dark, Qt::white, Qt::white },
                                            SchemeColors{ Qt::white, Qt::black, dark },
                                            SchemeColors{ Qt::yellow, Qt::blue, Qt::darkBlue } }) {
            const QPalette palette = schemeOf(colors);
            const auto stands = [&palette](QPalette::ColorRole text, QPalette::ColorRole on) {
                return contrast(palette.color(text), palette.color(on)) >= 4.5;
            };
            QVERIFY(stands(QPalette::WindowText, QPalette::Window));
            QVERIFY(stands(QPalette::ToolTipText, QPalette::ToolTipBase));
            QVERIFY(stands(QPalette::ButtonText, QPalette::Button));
            QVERIFY(stands(QPalette::Link, QPalette::Base));
            QVERIFY(stands(QPalette::HighlightedText, QPalette::Highlight));
            QCOMPARE(palette.color(QPalette::Text), colors.text);
            QVERIFY(palette.color(QPalette::Disabled, QPalette::Text) != colors.text);
        }
    }

    void editsTheLook()
    {
        Look look;
        const auto chooseStyle = [this](const char *name) {
            turnTo(0);
            auto *styles = page()->findChild<QComboBox *>();
            styles->addItem("nosuch"_q);
            styles->setCurrentText(QLatin1String(name));
        };
        for (bool applied : { false, true }) {
            show<LookDialog>(&look, nullptr);
            chooseStyle("windows");
            QCOMPARE(Look::currentStyle(), "windows"_q);
            turnTo(2);
            retype(named<QWidget>(page(), "Size:"), "25"); // the 5 is refused, the 2 too small
            turnTo(1);
            fillIn([&] { click(page(), "Text"); }, { "Color:=#12", "OK", "Color:=#0000ff", "OK" },
                   "color"_q);
            turnTo(2);
            click(dialog.get(), applied ? "&Apply" : "&Cancel");
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
            QCOMPARE(Look::currentStyle() == atStart, !applied);
            QCOMPARE(shown(QPalette::Text) == QColor(Qt::blue), applied);
            QCOMPARE(QApplication::font().pointSize() == 3, applied);
        }
        look = Look(); // of a program that came up with this style
        show<LookDialog>(&look, nullptr);
        SmallScreens::check(dialog.get(), "look-2"_q); // the last page again
        QVERIFY(boxText([&] { turnTo(1); }).endsWith("with windows style."_q));
        SmallScreens::check(dialog.get(), "look-1"_q);
        QVERIFY(boxText([&] { chooseStyle("nosuch"); }).startsWith("nosuch style"_q));
        SmallScreens::check(dialog.get(), "look-0"_q);
        turnTo(3);
        SmallScreens::check(dialog.get(), "look-3"_q);
    }

private:
    void profileEdited(Profile *edited) override { global->apply(edited); }
    void open(int row = -1) { show<SettingsDialog>(global, scope, this, nullptr, row); }
    QWidget *page() const { return dialog->findChild<QStackedWidget *>()->currentWidget(); }
    void turnTo(int row) const { dialog->findChild<QListWidget *>()->setCurrentRow(row); }
    static QColor shown(QPalette::ColorRole role) { return QApplication::palette().color(role); }

    /// The editor of a cell of the users' table.
    QLineEdit *edit(int row, int column) const
    {
        auto *table = page()->findChild<QTableWidget *>();
        QTest::qWait(0); // the one before closes in its time
        table->editItem(table->item(row, column));
        return named<QLineEdit>(table->viewport(), column == 0 ? "User" : "Password");
    }

    void retypeCell(int row, int column, const QString &text) const
    {
        QLineEdit *editor = edit(row, column);
        QVERIFY(!editor->text().contains("argon2"_q));
        editor->setText(text);
        QTest::keyClick(editor, Qt::Key_Return);
    }

    template <typename Dialog, typename... Arguments> void show(Arguments... arguments)
    {
        dialog = std::make_unique<Dialog>(arguments...);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    }

    const Profile *applied() const
    {
        click(dialog.get(), "&Apply");
        return global;
    }

    const QFont font = QApplication::font();
    const QString atStart = Look::currentStyle();
    std::unique_ptr<TestHome> home;
    Profile *global = nullptr;
    SettingsScope scope{ true, false };
    std::unique_ptr<QDialog> dialog;
};

QTEST_MAIN(tst_Dialogs)
#include "tst_dialogs.moc"

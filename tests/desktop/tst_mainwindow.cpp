#include "desktop/settings/KeyMaker.h"
#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/PageView.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/QrCode.h"
#include "desktop/window/ActivityDialog.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/PermissionButton.h"
#include "desktop/window/WebServices.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Widgets.h"

#include <QClipboard>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>

class tst_mainwindow : public QObject
{
    Q_OBJECT

    static QAction *action(const Desktop &desktop, const char *name)
    {
        const QList<QAction *> all = desktop.window->findChildren<QAction *>();
        for (QAction *each : all) {
            if (each->objectName() == QLatin1String(name) || each->data() == QLatin1String(name)
                || each->text() == QLatin1String(name))
                return each;
        }
        qFatal("no action %s", name);
    }

private Q_SLOTS:
    void initTestCase() { Q_INIT_RESOURCE(icons); }

    void sharedContent()
    {
        Desktop desktop;
        const auto link = [&] { return desktop.window->findChild<LinkLabel *>()->linkText(); };
        for (const QByteArray name : { "res/1", "res/2", "res/3", "res/4", "res/<b>&" }) {
            desktop.addFile(name);
            desktop.panel()->share(desktop.path(name));
        }
        QVERIFY(desktop.window->findChild<LinkLabel *>()->text().contains("/res/&lt;b&gt;&amp;"_q));
        desktop.panel()->share(desktop.path("res"));
        QCOMPARE(link(), desktop.path("res") + QLatin1Char('/'));
        const QString box = boxText([&] { desktop.panel()->share(desktop.path("<b>")); });
        QVERIFY(box.endsWith("/<b>\" not exists!"_q));
        action(desktop, desktop.path("res/3").toUtf8().constData())->trigger();
        action(desktop, "expertMode")->trigger();
        desktop.close();
        desktop.open();
        QVERIFY(action(desktop, "expertMode")->isChecked());
        QCOMPARE(link(), desktop.path("res/3"));
        const QString all = desktop.global()->recentFiles.join(QLatin1Char(' '));
        QCOMPARE(QString(all).remove(desktop.home.path()), "/res/3 /res /res/<b>& /res/4"_q);
    }

    void takesWhatItIsGiven()
    {
        Desktop desktop;
        desktop.addFile("a b/c");
        const auto dropped = [&](const QString &uris) {
            QMimeData data;
            data.setData("text/uri-list"_q, uris.toUtf8());
            const auto offered = Qt::CopyAction | Qt::MoveAction;
            QDragEnterEvent enter({}, offered, &data, Qt::LeftButton, Qt::NoModifier);
            QDropEvent drop({}, offered, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(desktop.window.get(), &enter);
            QApplication::sendEvent(desktop.window.get(), &drop);
            return enter.isAccepted() && drop.dropAction() == Qt::CopyAction;
        };
        const QString folder = "file://"_q + desktop.path("a%20b/");
        QVERIFY(dropped(folder));
        QCOMPARE(desktop.global()->recentFiles, QStringList(desktop.path("a b")));
        for (const QString &uris : { folder + "\r\n"_q + folder, "http://192.0.2.1/a"_q,
                                     "file://elsewhere"_q + desktop.path("a%20b/c") })
            QVERIFY(boxText([&] { dropped(uris); }).startsWith("Drop one file"_q));
        const QString none = "file://"_q + desktop.path("none");
        QVERIFY(boxText([&] { dropped(none); }).endsWith("not exists!"_q));
        QCOMPARE(desktop.global()->recentFiles.size(), 1);

        // By another start.
        desktop.addFile("a");
        boxText([&] { desktop.window->call({ desktop.path("none"), true }); });
        QTest::qWait(0);
        QVERIFY(!desktop.rows->isRunning()); // with what was shared before
        for (const char *run : { "starts", "goes on" }) {
            desktop.window->call({ desktop.path("a"), true });
            QTest::qWait(0);
            QVERIFY2(desktop.rows->isRunning(), run);
        }
        QCOMPARE(desktop.window->findChild<LinkLabel *>()->linkText(), desktop.path("a"));

        desktop.rows->stopAll();
        desktop.panel()->share(desktop.home.path());
        QSettings().clear(); // nobody has agreed to that yet
        const auto start = [&] { desktop.window->call({ {}, true }); };
        inModal<QMessageBox>(start, [&](QMessageBox *box) {
            start();
            QTest::qWait(0);
            QCOMPARE(QApplication::activeModalWidget(), box); // it asks once
            box->resize(1, 1); // on a small screen
            const auto *button = named<QAbstractButton>(box, "Share it anyway");
            QVERIFY(button->width() >= button->sizeHint().width());
            box->button(QMessageBox::Cancel)->click();
        });
        QVERIFY(!desktop.rows->isRunning());
    }

    void address()
    {
        Desktop desktop;
        const QLabel *label = desktop.list()->statusLabel();
        const auto *link = desktop.list()->hero()->findChild<LinkLabel *>();
        QCOMPARE(label->text(), Reachability::localText());
        QVERIFY(!link->isVisible());
        desktop.row()->start();
        QVERIFY(link->isVisible());
        const QString open = publicAddressLabel({}, "192.0.2.7"_q, 80);
        desktop.list()->showReach(open);
        QVERIFY(link->linkText() == desktop.row()->url() && label->text().endsWith(open));
        click(desktop.list(), "Copy");
        QCOMPARE(QGuiApplication::clipboard()->text(), desktop.row()->url());
        inModal<SettingsDialog>(
            [&] { QTest::keyClick(desktop.list()->switchLink(), Qt::Key_Return); },
            [](SettingsDialog *dialog) {
                named<QComboBox>(dialog, "Answers:")->setCurrentIndex(FaceStandard);
                click(dialog, "&Apply");
            });
        QVERIFY(!desktop.list()->switchLink()->isVisible());
        desktop.move({});
        QCOMPARE(label->text(), "<center><b>Network not found</b></center>"_q);
        desktop.move({ "127.0.0.1"_q });
        QVERIFY(desktop.row()->isListening() && !label->text().contains("not found"_q));
    }

    void madeKeysServeAllRowsAndAreShown()
    {
        Desktop desktop([](Profile &global) { global.sslMode = Qt::Checked; }, 3);
        desktop.row(2)->useProfile(desktop.home.profiles->duplicate(desktop.global(), "work"_q));
        // A box for each profile, one after the other.
        const auto start = [&] { desktop.list()->startButton()->click(); };
        const auto make = [](QMessageBox *box) { click(box, "Make a new key"); };
        inModal<QMessageBox>(start, make);
        const auto runs = [&](int row) { return desktop.row(row)->isListening(); };
        QTRY_VERIFY_WITH_TIMEOUT(runs(0) && runs(1), 20000);
        inModal<QMessageBox>([] {}, make);
        QTRY_VERIFY_WITH_TIMEOUT(runs(2), 20000);
        QVERIFY(!QApplication::activeModalWidget());

        const QString certificate = desktop.row()->profile()->publicKeyFile;
        inModal<QDialog>(
            [&] { click(desktop.list(), "QR code"); },
            [&](QDialog *asking) {
                const auto *facts = asking->findChildren<QLabel *>().constLast();
                const auto *code = asking->findChild<QrCode *>();
                QVERIFY(facts->text().endsWith(certificateFingerprint(certificate)));
                SmallScreens::check(asking, QStringLiteral("address"));
                click(asking, "Trust this computer");
                SmallScreens::check(asking, QStringLiteral("authority"));
                QVERIFY(facts->text().endsWith(authorityFingerprint(certificate)));
                QVERIFY(code->accessibleName().endsWith("http"_q + desktop.row()->url().mid(5)
                                                        + QLatin1String("/.quillon/authority")));
            });
    }

    void permissions()
    {
        Desktop desktop({}, 2);
        auto *button = desktop.list()->permissionButton();
        QCOMPARE(button->text(), "Visitors may change everything\nReached by everyone"_q);
        desktop.row()->start();
        action(desktop, "Look")->trigger();
        QCOMPARE(button->text().section(QLatin1Char('\n'), 0, 0), "Visitors may look"_q);
        const Profile stored(desktop.home.directories, QLatin1String(Profile::globalFile));
        QVERIFY(!stored.allowsUpload() && desktop.row()->isListening());
        Profile *open = desktop.home.profiles->duplicate(desktop.global(), "open"_q);
        desktop.row(1)->useProfile(open);
        QCOMPARE(button->text().count(QLatin1Char('\n')), 1); // it allows the same
        desktop.edit([](Profile &edited) { edited.enableDelete = Qt::Checked; }, open);
        QVERIFY(button->text().endsWith("\nOther addresses differ"_q));
        desktop.keeper->remove(desktop.row(1));
        boxText([&] { action(desktop, "Add only")->trigger(); }, QMessageBox::No);
        QCOMPARE(permissionOf(*desktop.global()), Permission::Look);
        desktop.global()->authMode = AuthBasic;
        desktop.global()->everyone = Right::See;
        button->showProfile();
        QVERIFY(button->text().endsWith("as set\nWith a name and password"_q));
        inModal<SettingsDialog>([&] { button->click(); },
                                [](const SettingsDialog *dialog) {
                                    QCOMPARE(dialog->findChild<PageView *>()->currentRow(), 0);
                                });
    }

    void keys()
    {
        Desktop desktop({}, 2);
        const auto press = [&](int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
            desktop.window->activateWindow(); // the keys are those of the window in front
            QVERIFY(QTest::qWaitForWindowActive(desktop.window.get()));
            QTest::keyClick(desktop.window->focusWidget(), Qt::Key(key), modifiers);
        };
        const auto copied = [] { return QGuiApplication::clipboard()->text(); };
        QGuiApplication::clipboard()->setText("x"_q);
        press(Qt::Key_C);
        QCOMPARE(copied(), "x"_q);
        desktop.row(1)->start();
        press(Qt::Key_C);
        QCOMPARE(copied(), desktop.row(1)->url()); // the selected one does not run
        desktop.row(0)->start();
        press(Qt::Key_C);
        QCOMPARE(copied(), desktop.row(0)->url());
        QLabel *label = desktop.list()->statusLabel();
        label->setFocus();
        label->setSelection(0, 10);
        press(Qt::Key_C);
        QCOMPARE(copied(), "Accessible"_q);
        desktop.keeper->remove(desktop.row(1));
        press(Qt::Key_F5, {});
        QCOMPARE(desktop.rows->all().size(), 2);
        inModal<QFileDialog>([&] { press(Qt::Key_O); },
                             [&](QFileDialog *chooser) {
                                 chooser->selectFile(desktop.path("res"));
                                 static_cast<QDialog *>(chooser)->accept();
                             });
        QCOMPARE(desktop.row()->server()->shared().filePath(), desktop.path("res"));
        desktop.global()->warningMode = Qt::Checked;
        const QString box = boxText([&] { press(Qt::Key_Q); }, QMessageBox::Yes);
        QVERIFY(box.endsWith("Do you want to exit?"_q));
        QVERIFY(!desktop.window->isVisible() && desktop.rows->all().isEmpty());
    }

    void tray()
    {
        Desktop desktop;
        const QMenu *menu = nullptr;
        const auto all = QApplication::topLevelWidgets();
        for (const QWidget *each : all) {
            const auto *found = qobject_cast<const QMenu *>(each);
            if (found && found->actions().value(0)->text() == "Open the window"_q)
                menu = found;
        }
        QVERIFY(menu);
        const QList<QAction *> entries = menu->actions();
        desktop.window->hide();
        entries[0]->trigger();
        QVERIFY(desktop.window->isVisible() && !entries[2]->isEnabled());
        entries[1]->trigger();
        QVERIFY(desktop.row()->isListening() && entries[1]->text() == "Stop"_q);
        entries[2]->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), desktop.row()->url());
        entries[3]->trigger();
        QVERIFY(!desktop.window->isVisible() && desktop.rows->all().isEmpty());
    }

    void endOfTheSession()
    {
        Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
        endWithTheSession(qApp, desktop.window.get());
        desktop.row()->start();
        desktop.row()->share(desktop.path("res"));
        QObject manager; // nobody looks at it
        Q_EMIT qApp->commitDataRequest(reinterpret_cast<QSessionManager &>(manager));
        QVERIFY(
            desktop.rows->all().isEmpty()); // without a question, and before the signal is through
        QVERIFY(readFile(desktop.path(".quillon/list.ini")).contains("/res"));
        QVERIFY(Profile(desktop.home.directories, QLatin1String(Profile::globalFile)).cleanExit);
    }

    void visitorsAreSentAway()
    {
        Desktop desktop;
        desktop.addFile("a.txt", "hello");
        desktop.row()->start();
        action(desktop, "activity")->trigger();
        auto *page = desktop.window->findChild<ActivityDialog *>();
        auto *visitors = named<QTreeView>(page, "Visitors");
        const QHostAddress elsewhere("127.0.0.9"_q); // this machine itself is never blocked
        const auto visit = [&](const std::function<void()> &meanwhile) {
            RawClient client(desktop.row()->server()->port, elsewhere);
            const QByteArray got = client.exchange(rawRequest("GET", "/a.txt")).body;
            page->refresh();
            visitors->setCurrentIndex(visitors->model()->index(0, 0));
            meanwhile();
            return client.waitForClose() ? got + " and away" : got;
        };
        QCOMPARE(visit([&] { click(page, "Disconnect"); }), QByteArray("hello and away"));
        QCOMPARE(visit([&] { boxText([&] { click(page, "Block"); }, QMessageBox::Yes); }),
                 QByteArray("hello and away"));
        QCOMPARE(visit([] {}), QByteArray(" and away"));
        click(page, "Unblock all");
        QVERIFY(visit([&] { desktop.row()->stop(); }).startsWith("hello"));
    }

    void questionsBeforeAStop()
    {
        Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
        const auto *table = desktop.list()->table();
        desktop.row()->start();
        QCOMPARE(boxText([&] { QVERIFY(!desktop.window->close()); }, QMessageBox::No),
                 "The server is running.\nDo you want to exit?"_q);
        const auto change = [&] { action(desktop, "expertMode")->trigger(); };
        for (const auto answer : { QMessageBox::No, QMessageBox::Yes }) {
            const bool yes = answer == QMessageBox::Yes;
            QVERIFY(boxText(change, answer).endsWith("Do you want to stop?"_q));
            QCOMPARE(desktop.row()->isListening(), !yes);
            QCOMPARE(action(desktop, "expertMode")->isChecked(), yes);
            QCOMPARE(action(desktop, "reloadPublic")->isVisible(), yes);
            QCOMPARE(table->isColumnHidden(AddressTable::StatusColumn), !yes);
        }
    }

    void rowVanishesUnderItsQuestion()
    {
        Desktop desktop(inExpertMode());
        desktop.global()->warningMode = Qt::Checked;
        desktop.row()->start();
        RawClient client(desktop.row()->server()->port);
        client.send(rawRequest("PUT", "/b", "Expect: 100-continue\r\nContent-Length: 9\r\n"));
        QTRY_VERIFY(desktop.row()->isTransferring());
        const QPointer<ServerRow> row = desktop.row();
        inModal<QMessageBox>(
            [&] { desktop.list()->table()->cellChosen(0, AddressTable::StatusColumn); },
            [&](QMessageBox *box) {
                desktop.move({});
                QTRY_VERIFY(!row);
                box->button(QMessageBox::Yes)->click();
            });
        QVERIFY(desktop.rows->all().isEmpty());
    }

    void saysWhatIsWrong()
    {
        Desktop desktop;
        desktop.close();
        // A folder in the place of the file can't be written by anyone.
        QVERIFY(QFile::remove(desktop.path(".quillon/list.ini")));
        QVERIFY(QDir().mkpath(desktop.path(".quillon/list.ini")));
        desktop.addFile(".quillon/work.cnf", "junk");
        desktop.global()->amend([](Profile &global) { global.warningMode = Qt::Checked; });
        desktop.home.restart();
        const QString root = boxText([&] {
            desktop.makeWindow(true);
            desktop.window->call({ {}, true });
        });
        QVERIFY(root.startsWith("The server run as root!\n"_q));
        QVERIFY(boxText([] {}).contains(desktop.path(".quillon/work.cnf.bad\n")));
        QVERIFY(boxText([] {}).endsWith(desktop.path(".quillon/list.ini")));
        QVERIFY(!desktop.rows->isRunning()); // with rows that nobody chose
        const QString end = boxText([&] { desktop.close(); });
        QVERIFY(end.startsWith("Can't save the settings\n"_q));
    }

    void messagesQueue()
    {
        EventHandler events;
        QWidget window;
        window.show();
        for (int i = 0; i < 3 * EventHandler::maxWaitingBoxes; ++i)
            events.msg("title"_q, QString::number(i / 2));
        events.showBoxesOver(&window);
        QVERIFY(!QApplication::activeModalWidget()); // never inside the call
        for (int i = 0; i <= EventHandler::maxWaitingBoxes; ++i)
            QCOMPARE(boxText([] {}), "title\n%1"_q.arg(i));
        QTest::qWait(0);
        QVERIFY(!QApplication::activeModalWidget()); // the others are dropped
    }

    void warnsOfOpenAccess()
    {
        Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
        StandIn service;
        service.answer(R"({"status":"success","message":"Port 80 is open on 192.0.2.7."})");
        QSettings().setValue("services/portCheck"_q, service.base());
        desktop.window.reset();
        desktop.makeWindow();
        QTest::qWait(0);
        QVERIFY(service.requests.isEmpty()); // it waits for the window
        const auto ask = [&desktop] {
            const QString text = boxText([&desktop] { desktop.window->show(); }, QMessageBox::Yes);
            QVERIFY(text.startsWith("The shared files are accessible for everyone."_q));
        };
        inModal<SettingsDialog>(ask, [](const SettingsDialog *dialog) {
            QCOMPARE(dialog->findChild<PageView *>()->currentRow(), 1);
        });
    }

    void rowKeys()
    {
        Desktop desktop(inExpertMode(), 2);
        AddressTable *table = desktop.list()->table();
        table->setFocus();
        QTest::keyClick(table, Qt::Key_Down);
        QCOMPARE(desktop.rows->current(), desktop.row(1));
        table->setCurrentCell(1, AddressTable::StatusColumn);
        QTest::keyClick(table, Qt::Key_Return);
        QVERIFY(desktop.row(1)->isListening() && !desktop.row(0)->isListening());
        QCOMPARE(table->currentItem()->text(), "Stop 0KB"_q);
        desktop.rows->remove(desktop.row(0));
        QCOMPARE(table->rowCount(), 1);
        QCOMPARE(table->item(0, 0)->text(), desktop.row()->url().mid(7));
        QTest::keyClick(table, Qt::Key_Space);
        QVERIFY(!desktop.rows->isRunning());

        table->setCurrentCell(0, AddressTable::AddressColumn);
        QTest::keyClick(table, Qt::Key_Return);
        QTRY_VERIFY(desktop.list()->findChild<QMenu *>()->isVisible());
        desktop.list()->findChild<QMenu *>()->close();

        // A finger or the left button, and released where it was pressed.
        const auto press = [table](Qt::MouseButton button, int column) {
            const auto middle = [table](int of) {
                return table->visualRect(table->model()->index(0, of)).center();
            };
            QTest::mousePress(table->viewport(), button, {}, middle(column));
            QTest::mouseRelease(table->viewport(), button, {}, middle(AddressTable::StatusColumn));
        };
        press(Qt::RightButton, AddressTable::StatusColumn);
        press(Qt::LeftButton, AddressTable::ConfigColumn);
        QVERIFY(!desktop.rows->isRunning());
        desktop.list()->findChild<QMenu *>()->close();
        press(Qt::LeftButton, AddressTable::StatusColumn);
        QVERIFY(desktop.rows->isRunning());
        const auto remove = [&] { desktop.list()->removeRow(); };
        QVERIFY(boxText(remove, QMessageBox::No).endsWith("remove it?"_q));
        desktop.rows->stopAll();
    }

    void largeLettersFit()
    {
        Desktop desktop;
        desktop.row()->start();
        QFont large = desktop.window->font();
        large.setPointSize(24);
        desktop.window->setFont(large);
        desktop.window->resize(480, 800);
        const auto *link = desktop.list()->hero()->findChild<LinkLabel *>();
        QTRY_VERIFY(link->text().contains(desktop.row()->url() + "</a>"_q));
        const auto *button = desktop.list()->permissionButton();
        const auto wordsWidth = [button] {
            return QFontMetrics(button->font()).size(0, button->text()).width();
        };
        QTRY_VERIFY(wordsWidth() < button->width());
        QVERIFY(button->width() <= 480 && button->sizeHint().width() > button->width());
        const QStringList answers{ "One answer of several"_q, "Another answer"_q };
        const QFont before = QApplication::font();
        QApplication::setFont(large);
        inModal<QMessageBox>([&] { askOneOf(desktop.window.get(), "Which?"_q, answers); },
                             [](const QMessageBox *box) {
                                 for (const QAbstractButton *each : box->buttons())
                                     QVERIFY(each->width() >= each->sizeHint().width());
                             });
        QMenu menu;
        sizeForFingers(&menu);
        menu.addAction(QString(40, QLatin1Char('m')))->setShortcut({ "Ctrl+O"_q });
        menu.popup({});
        QVERIFY(menu.sizeHint().width() <= menu.screen()->availableSize().width());
        QApplication::setFont(before);
    }

    void fitsSmallScreens()
    {
        for (const bool expert : { false, true }) {
            Desktop desktop(inExpertMode(expert), 2);
            const QByteArray file = "a folder with a rather long name/and another one, also long/a";
            desktop.addFile(file);
            desktop.panel()->share(desktop.path(file));
            desktop.list()->startButton()->click();
            desktop.events.newConnection("192.0.2.9"_q);
            const QString picture = QLatin1String(expert ? "window-expert" : "window-simple");
            SmallScreens::check(desktop.window.get(), picture);
            QCOMPARE(desktop.window->findChild<QScrollArea *>()->verticalScrollBar()->maximum(), 0);
            if (expert)
                continue;
            action(desktop, "activity")->trigger();
            SmallScreens::check(desktop.window->findChild<ActivityDialog *>(), "activity"_q);
            inModal<QDialog>([&] { action(desktop, "help")->trigger(); },
                             [](QDialog *help) { SmallScreens::check(help, "help"_q); });
        }
    }
};

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"

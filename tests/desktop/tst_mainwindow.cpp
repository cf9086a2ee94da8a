#include "desktop/settings/SettingsDialog.h"
#include "desktop/widgets/LinkLabel.h"
#include "desktop/widgets/PageView.h"
#include "desktop/window/AddressTable.h"
#include "desktop/window/FileMenu.h"
#include "desktop/window/PermissionButton.h"
#include "desktop/window/WebServices.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Widgets.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>

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
        QVERIFY(desktop.window->findChild<LinkLabel *>()->text().contains(
            QLatin1String("/res/&lt;b&gt;&amp;")));
        desktop.panel()->share(desktop.path("res"));
        QCOMPARE(link(), desktop.path("res") + QLatin1Char('/'));
        const QString box = boxText([&] { desktop.panel()->share(desktop.path("<b>")); });
        QVERIFY(box.endsWith(QLatin1String("/<b>\" not exists!")));
        action(desktop, desktop.path("res/3").toUtf8().constData())->trigger();
        action(desktop, "expertMode")->trigger();
        desktop.close();
        desktop.open();
        QVERIFY(action(desktop, "expertMode")->isChecked());
        QCOMPARE(link(), desktop.path("res/3"));
        const QString all = desktop.global()->recentFiles.join(QLatin1Char(' '));
        QCOMPARE(QString(all).remove(desktop.home.path()),
                 QStringLiteral("/res/3 /res /res/<b>& /res/4"));
        const QFontMetrics metrics(QApplication::font());
        const int width = metrics.horizontalAdvance(all);
        QCOMPARE(recentFileLabel(QStringLiteral("/abcd/a&"), metrics, width),
                 QStringLiteral("/abcd/a&&"));
        const QString elided = recentFileLabel(all, metrics, width / 2);
        QVERIFY(elided.startsWith(all.left(4)) && elided.endsWith(all.right(4)));
    }

    void anotherStart()
    {
        Desktop desktop;
        desktop.addFile("a");
        boxText([&] { desktop.window->call({ desktop.path("none"), true }); });
        QTest::qWait(0);
        QVERIFY(!desktop.rows()->isRunning()); // with what was shared before
        for (const char *run : { "starts", "goes on" }) {
            desktop.window->call({ desktop.path("a"), true });
            QTest::qWait(0);
            QVERIFY2(desktop.rows()->isRunning(), run);
        }
        QCOMPARE(desktop.window->findChild<LinkLabel *>()->linkText(), desktop.path("a"));

        desktop.rows()->stopAll();
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
        QVERIFY(!desktop.rows()->isRunning());
    }

    void drop()
    {
        Desktop desktop;
        desktop.addFile("a b/c");
        const auto dropped = [&](const QString &uris) {
            QMimeData data;
            data.setData(QStringLiteral("text/uri-list"), uris.toUtf8());
            QDragEnterEvent enter(QPoint(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                                  Qt::NoModifier);
            QDropEvent drop(QPoint(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                            Qt::NoModifier);
            QApplication::sendEvent(desktop.window.get(), &enter);
            QApplication::sendEvent(desktop.window.get(), &drop);
            return enter.isAccepted() && drop.dropAction() == Qt::CopyAction;
        };
        const QString folder = QLatin1String("file://") + desktop.path("a%20b/");
        QVERIFY(dropped(folder));
        QCOMPARE(desktop.global()->recentFiles, QStringList(desktop.path("a b")));
        for (const QString &uris :
             { folder + QLatin1String("\r\n") + folder, QStringLiteral("http://192.0.2.1/a"),
               QLatin1String("file://elsewhere") + desktop.path("a%20b/c") })
            QVERIFY(boxText([&] { dropped(uris); }).startsWith(QLatin1String("Drop one file")));
        const QString none = QLatin1String("file://") + desktop.path("none");
        QVERIFY(boxText([&] { dropped(none); }).endsWith(QLatin1String("not exists!")));
        QCOMPARE(desktop.global()->recentFiles.size(), 1);
    }

    void startButton()
    {
        Desktop desktop;
        QPushButton *button = desktop.list()->startButton();
        const QLabel *label = desktop.list()->statusLabel();
        const auto *address = desktop.list()->findChild<LinkLabel *>();
        QCOMPARE(label->text(), Reachability::localText());
        for (const char *text : { "Stop", "Start" }) {
            QTest::keyClick(button, Qt::Key_Space);
            QCOMPARE(button->text(), QLatin1String(text));
            QCOMPARE(address->isVisible(), desktop.row()->isListening());
        }
        desktop.row()->start();
        const QString open = publicAddressLabel({}, QStringLiteral("192.0.2.7"), 80);
        desktop.list()->showReach(open);
        QVERIFY(address->linkText() == desktop.row()->url() && label->text().endsWith(open));
        click(desktop.list(), "Copy");
        QCOMPARE(QGuiApplication::clipboard()->text(), desktop.row()->url());
        inModal<QDialog>(
            [&] { click(desktop.list(), "QR code"); },
            [&](QDialog *asking) {
                SmallScreens::check(asking, QStringLiteral("address"));
                const auto *facts = named<QLabel>(asking, "What is shared");
                QVERIFY(facts->text().endsWith(desktop.row()->server()->shared().fileName()));
            });
        desktop.addresses.clear();
        desktop.window->keeper()->lookForChanges();
        QCOMPARE(label->text(), QStringLiteral("<center><b>Network not found</b></center>"));
    }

    void permissions()
    {
        Desktop desktop;
        auto *button = desktop.list()->permissionButton();
        QCOMPARE(button->text(),
                 QStringLiteral("Visitors may change everything\nReached by everyone"));
        desktop.row()->start();
        action(desktop, "Look")->trigger();
        QCOMPARE(button->text().section(QLatin1Char('\n'), 0, 0),
                 QStringLiteral("Visitors may look"));
        const Profile stored(desktop.home.directories, QLatin1String(Profile::globalFile));
        QVERIFY(!stored.allowsUpload() && desktop.row()->isListening());
        boxText([&] { action(desktop, "Add only")->trigger(); }, QMessageBox::No);
        QCOMPARE(permissionOf(*desktop.global()), Permission::Look);
        desktop.global()->authMode = AuthBasic;
        desktop.global()->everyone = Right::See;
        button->showProfile();
        QVERIFY(button->text().endsWith(QLatin1String("as set\nWith a name and password")));
        inModal<SettingsDialog>([&] { button->click(); },
                                [](const SettingsDialog *dialog) {
                                    QCOMPARE(dialog->findChild<PageView *>()->currentRow(), 0);
                                });
    }

    void keys()
    {
        Desktop desktop({}, 2);
        const auto press = [&](int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
            QTest::keyClick(desktop.window->focusWidget(), Qt::Key(key), modifiers);
        };
        const auto copied = [] { return QGuiApplication::clipboard()->text(); };
        QGuiApplication::clipboard()->setText(QStringLiteral("x"));
        press(Qt::Key_C);
        QCOMPARE(copied(), QStringLiteral("x"));
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
        QCOMPARE(copied(), QStringLiteral("Accessible"));
        desktop.window->keeper()->remove(desktop.row(1));
        press(Qt::Key_F5, {});
        QCOMPARE(desktop.rows()->all().size(), 2);
        desktop.global()->warningMode = Qt::Checked;
        const QString box = boxText([&] { press(Qt::Key_Q); }, QMessageBox::Yes);
        QVERIFY(box.endsWith(QLatin1String("Do you want to exit?")));
        QVERIFY(!desktop.window->isVisible() && desktop.rows()->all().isEmpty());
    }

    void questionsBeforeAStop()
    {
        Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
        const auto *table = desktop.list()->table();
        desktop.row()->start();
        QCOMPARE(boxText([&] { QVERIFY(!desktop.window->close()); }, QMessageBox::No),
                 QStringLiteral("The server is running.\nDo you want to exit?"));
        const auto change = [&] { action(desktop, "expertMode")->trigger(); };
        for (const auto answer : { QMessageBox::No, QMessageBox::Yes }) {
            const bool yes = answer == QMessageBox::Yes;
            QVERIFY(boxText(change, answer).endsWith(QLatin1String("Do you want to stop?")));
            QCOMPARE(desktop.row()->isListening(), !yes);
            QCOMPARE(action(desktop, "expertMode")->isChecked(), yes);
            QCOMPARE(action(desktop, "reloadPublic")->isVisible(), yes);
            QCOMPARE(table->isColumnHidden(AddressTable::StatusColumn), !yes);
        }
    }

    void rowVanishesUnderItsQuestion()
    {
        for (const bool byTable : { false, true }) {
            Desktop desktop([](Profile &global) {
                global.expertMode = true;
                global.warningMode = Qt::Checked;
            });
            desktop.row()->start();
            const RawClient client(desktop.row()->server()->port);
            QTRY_COMPARE(desktop.row()->server()->connectionCount(), 1);
            desktop.row()->server()->addReceivedBytes(1000000);
            const auto stop = [&] {
                if (byTable)
                    Q_EMIT desktop.list()->table()->cellChosen(0, AddressTable::StatusColumn);
                else
                    click(desktop.panel(), "Stop");
            };
            const QPointer<ServerRow> row = desktop.row();
            inModal<QMessageBox>(stop, [&](QMessageBox *box) {
                desktop.addresses.clear();
                desktop.window->keeper()->lookForChanges();
                QTRY_VERIFY(!row);
                box->button(QMessageBox::Yes)->click();
            });
            QVERIFY(desktop.rows()->all().isEmpty());
        }
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
        const QString root = boxText([&] { desktop.open(true); });
        QVERIFY(root.startsWith(QLatin1String("The server run as root!\n")));
        QVERIFY(boxText([] {}).contains(desktop.path(".quillon/work.cnf.bad\n")));
        QVERIFY(boxText([] {}).endsWith(desktop.path(".quillon/list.ini")));
        const QString end = boxText([&] { desktop.close(); });
        QVERIFY(end.startsWith(QLatin1String("Can't save the settings\n")));
    }

    void messagesQueue()
    {
        EventHandler events;
        const auto tell = [&](int i) { events.msg(QStringLiteral("title"), QString::number(i)); };
        for (int i = 0; i < 3 * EventHandler::maxWaitingBoxes; ++i)
            tell(i / 2);
        QTest::qWait(0); // they wait for the window
        QWidget window;
        window.show();
        events.showBoxesOver(&window);
        QVERIFY(!QApplication::activeModalWidget()); // never inside the call
        for (int i = 0; i <= EventHandler::maxWaitingBoxes; ++i)
            QCOMPARE(boxText([] {}), QStringLiteral("title\n%1").arg(i));
        // The others are dropped, and a text whose box is closed can be shown again.
        QCOMPARE(boxText([&] { tell(0); }), QStringLiteral("title\n0"));
    }

    void warnsOfOpenAccess()
    {
        Desktop desktop([](Profile &global) { global.warningMode = Qt::Checked; });
        StandIn service;
        service.answer(R"({"status":"success","message":"Port 80 is open on 192.0.2.7."})");
        QSettings().setValue(QStringLiteral("services/portCheck"), service.base());
        desktop.window.reset();
        desktop.window = desktop.makeWindow();
        QTest::qWait(0);
        QVERIFY(service.requests.isEmpty()); // it waits for the window
        const auto ask = [&desktop] {
            const QString text = boxText([&desktop] { desktop.window->show(); }, QMessageBox::Yes);
            QVERIFY(
                text.startsWith(QLatin1String("The shared files are accessible for everyone.")));
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
        QCOMPARE(desktop.rows()->current(), desktop.row(1));
        table->setCurrentCell(1, AddressTable::StatusColumn);
        QTest::keyClick(table, Qt::Key_Return);
        QVERIFY(desktop.row(1)->isListening() && !desktop.row(0)->isListening());
        QCOMPARE(table->currentItem()->text(), QStringLiteral("Stop 0KB"));
        desktop.rows()->remove(desktop.row(0));
        QCOMPARE(table->rowCount(), 1);
        QCOMPARE(table->item(0, 0)->text(), desktop.row()->url().mid(7));
        QTest::keyClick(table, Qt::Key_Space);
        QVERIFY(!desktop.rows()->isRunning());

        table->setCurrentCell(0, AddressTable::AddressColumn);
        QTest::keyClick(table, Qt::Key_Return);
        QTRY_VERIFY(desktop.list()->findChild<QMenu *>()->isVisible());
        desktop.list()->findChild<QMenu *>()->close();

        // A finger or the left button, and released where it was pressed.
        const auto press = [table](Qt::MouseButton button, int column) {
            const QPoint end =
                table->visualRect(table->model()->index(0, AddressTable::StatusColumn)).center();
            const QPoint begin = table->visualRect(table->model()->index(0, column)).center();
            QTest::mousePress(table->viewport(), button, {}, begin);
            QTest::mouseRelease(table->viewport(), button, {}, end);
        };
        press(Qt::RightButton, AddressTable::StatusColumn);
        press(Qt::LeftButton, AddressTable::ConfigColumn);
        QVERIFY(!desktop.rows()->isRunning());
        desktop.list()->findChild<QMenu *>()->close();
        press(Qt::LeftButton, AddressTable::StatusColumn);
        QVERIFY(desktop.rows()->isRunning());
        const auto remove = [&] { desktop.list()->removeRow(); };
        QVERIFY(boxText(remove, QMessageBox::No).endsWith(QLatin1String("remove it?")));
        desktop.rows()->stopAll();
    }

    void fitsSmallScreens()
    {
        for (const bool expert : { false, true }) {
            Desktop desktop(inExpertMode(expert), 2);
            const QByteArray file = "a folder with a rather long name/and another one, also long/a";
            desktop.addFile(file);
            desktop.panel()->share(desktop.path(file));
            desktop.list()->startButton()->click();
            desktop.events.newConnection(QStringLiteral("192.0.2.9"));
            const QString picture = QLatin1String(expert ? "window-expert" : "window-simple");
            SmallScreens::check(desktop.window.get(), picture);
            QCOMPARE(desktop.window->findChild<QScrollArea *>()->verticalScrollBar()->maximum(), 0);
        }
    }
};

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"

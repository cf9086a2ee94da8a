#pragma once

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

/// Runs `action`, which opens a modal window of type `Window` now or soon, and gives that window to
/// `visit`, after which it is closed.
template <typename Window, typename Action, typename Visit> void inModal(Action action, Visit visit)
{
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto *window = qobject_cast<Window *>(QApplication::activeModalWidget());
        if (!window)
            return;
        poll.stop();
        const QPointer<Window> still(window);
        visit(window);
        if (still && still->isVisible())
            still->close(); // a failed check left it open
    });
    poll.start(1);
    action();
    QVERIFY2(QTest::qWaitFor([&poll] { return !poll.isActive(); }), "the window did not come up");
}

/// Title and text of the message box that `action` brings up; it is answered with `button`, or with
/// its default.
template <typename Action>
QString boxText(Action action, QMessageBox::StandardButton button = QMessageBox::NoButton)
{
    QString text;
    inModal<QMessageBox>(action, [&text, button](QMessageBox *box) {
        text = box->windowTitle() + box->text();
        if (button == QMessageBox::NoButton)
            QTest::keyClick(box, Qt::Key_Return);
        else
            box->button(button)->click();
    });
    return text;
}

/// The widget of this type that shows `name` or is read out as it.
template <typename Widget> Widget *named(const QWidget *parent, const QString &name)
{
    const auto widgets = parent->findChildren<Widget *>();
    for (Widget *widget : widgets) {
        const bool shows =
            widget->property("text").toString() == name && !qobject_cast<const QLabel *>(widget);
        if (shows || widget->accessibleName() == name)
            return widget;
    }
    qFatal("no widget \"%s\"", qPrintable(name));
}

template <typename Widget> Widget *named(const QWidget *parent, const char *name)
{
    return named<Widget>(parent, QString::fromLatin1(name));
}

inline void click(const QWidget *parent, const char *name)
{
    QTest::mouseClick(named<QAbstractButton>(parent, name), Qt::LeftButton);
}

/// Types over the whole content of `field`.
inline void retype(QWidget *field, const QString &text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
}

namespace SmallScreens {

constexpr int finger = 44;

inline bool isTarget(const QWidget *widget)
{
    const bool partOfSpinBox = qobject_cast<QAbstractSpinBox *>(widget->parentWidget());
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QComboBox *>(widget)
        || qobject_cast<const QAbstractSpinBox *>(widget)
        || (qobject_cast<const QLineEdit *>(widget) && !partOfSpinBox);
}

inline QByteArray describe(const QWidget *widget)
{
    return (QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ')
            + widget->accessibleName() + widget->property("text").toString())
        .toUtf8();
}

/// What is too small, nameless or cut off in `window`, one line each.
inline QByteArray faults(const QWidget *window)
{
    QByteArray found;
    const auto widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const auto *area = qobject_cast<const QScrollArea *>(widget);
        if (area && area->isVisible() && area->horizontalScrollBar()->maximum() > 0)
            found += "sideways: " + describe(area->widget()) + '\n';
        const bool internal = widget->objectName().startsWith(QLatin1String("qt_"))
            || widget->inherits("QTableCornerButton") || widget->inherits("QDialogButtonBox");
        if (!widget->isVisible() || !isTarget(widget) || internal)
            continue;
        if (widget->width() < finger || widget->height() < finger)
            found += "small: " + describe(widget) + '\n';
        if (widget->accessibleName().isEmpty() && widget->property("text").toString().isEmpty())
            found += "nameless: " + describe(widget) + '\n';
    }
    return found;
}

/// Where the Tab key leaves the order in which one reads, one line each.
inline QByteArray tabFaults(QWidget *window)
{
    const auto areas = window->findChildren<QScrollArea *>();
    const auto shown = std::find_if(areas.begin(), areas.end(),
                                    [](const QScrollArea *area) { return area->isVisible(); });
    const QWidget *page = shown == areas.end() ? window : (*shown)->widget();

    QByteArray found;
    QPoint last;
    for (QWidget *next = window->nextInFocusChain(); next != window;
         next = next->nextInFocusChain()) {
        const bool stop = next->isVisible() && next->isEnabled() && !next->focusProxy()
            && next->focusPolicy() & Qt::TabFocus && page->isAncestorOf(next);
        if (!stop)
            continue;
        const QPoint here = next->mapTo(window, next->rect().center());
        const bool sameRow = qAbs(here.y() - last.y()) < finger / 2;
        if (sameRow ? here.x() < last.x() : here.y() < last.y())
            found += "tab: " + describe(next) + '\n';
        last = here;
    }
    return found;
}

/// Keeps a picture of `widget` for people to look at.
inline bool keepPicture(QWidget *widget, const QString &name)
{
    const QString folder =
        QFileInfo(QStringLiteral(__FILE__)).path() + QLatin1String("/../artefacts/");
    return QDir().mkpath(folder) && widget->grab().save(folder + name + QLatin1String(".png"));
}

/// Gives `window` the size of a small screen, keeps its picture and looks for faults.
inline QByteArray faultsAt(QWidget *window, const QSize &size, const QString &name)
{
    window->resize(size);
    // Pages settle in a few rounds of the event loop.
    (void)QTest::qWaitFor([window] { return faults(window).isEmpty(); }, 1000);
    const QString picture =
        QStringLiteral("%1-%2x%3").arg(name).arg(size.width()).arg(size.height());
    if (!keepPicture(window, picture) || window->size() != size)
        return "does not fit or is not kept: " + picture.toUtf8();
    return faults(window) + tabFaults(window);
}

/// The sizes of the screens, as rows of a test.
inline void addSizes()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("landscape") << QSize(800, 480);
    QTest::newRow("portrait") << QSize(480, 800);
}

} // namespace SmallScreens

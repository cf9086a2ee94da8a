#pragma once

#include "desktop/look/Scheme.h"
#include "tests/support/Files.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <algorithm>

/// The controls without a name for a screen reader in `object` and below it, their paths a line
/// each.
inline QByteArray nameless(const QAccessibleInterface *object, QByteArray path = {})
{
    static const QSet<int> controls{ QAccessible::Button,   QAccessible::ButtonMenu,
                                     QAccessible::CheckBox, QAccessible::ComboBox,
                                     QAccessible::SpinBox,  QAccessible::EditableText,
                                     QAccessible::List,     QAccessible::Table,
                                     QAccessible::Tree,     QAccessible::PageTab };
    const auto *widget = qobject_cast<const QWidget *>(object->object());
    if (!widget)
        return {};
    path += QByteArray("/") + widget->metaObject()->className();
    // Of a box of choices the toolkit gives what is chosen.
    const bool isNamed = object->role() == QAccessible::ComboBox
        ? !widget->accessibleName().isEmpty()
        : !object->text(QAccessible::Name).isEmpty();
    if (controls.contains(object->role()))
        return isNamed ? QByteArray() : path + '\n';
    QByteArray found;
    for (int i = 0; i < object->childCount(); ++i)
        found += nameless(object->child(i), path);
    return found;
}

/// The same for a whole window with its menus.
inline QByteArray namelessIn(QWidget *window)
{
    QByteArray found = nameless(QAccessible::queryAccessibleInterface(window));
    const auto menus = window->findChildren<QMenu *>();
    for (const QMenu *menu : menus) {
        const auto entries = menu->actions();
        for (const QAction *entry : entries) {
            if (entry->isVisible() && !entry->isSeparator() && entry->text().isEmpty())
                found += menu->metaObject()->className() + QByteArray("/QAction\n");
        }
    }
    return found;
}

/// Runs `action`, which opens a modal window of type `Window` now or soon, and gives that window to
/// `visit`, after which it is closed.
template <typename Window, typename Action, typename Visit> void inModal(Action action, Visit visit)
{
    QByteArray unnamed;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        const QPointer<Window> window = qobject_cast<Window *>(QApplication::activeModalWidget());
        if (!window)
            return;
        poll.stop();
        unnamed = namelessIn(window);
        visit(window.data());
        if (window && window->isVisible())
            window->close(); // a failed check left it open
    });
    poll.start(1);
    action();
    QVERIFY2(QTest::qWaitFor([&poll] { return !poll.isActive(); }), "the window did not come up");
    QCOMPARE(unnamed, QByteArray());
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

/// The widget of this type that shows `name` or is read out as it; no label.
template <typename Widget> Widget *named(const QWidget *parent, const char *name)
{
    const QString wanted = QString::fromLatin1(name);
    const auto widgets = parent->findChildren<Widget *>();
    for (Widget *widget : widgets) {
        if (widget->accessibleName() == wanted
            || (widget->property("text") == wanted && !widget->inherits("QLabel")))
            return widget;
    }
    qFatal("no widget \"%s\"", name);
}

inline void click(const QWidget *parent, const char *name)
{
    QTest::mouseClick(named<QAbstractButton>(parent, name), Qt::LeftButton);
}

/// Types over the whole content of `field`.
inline void retype(QWidget *field, const char *text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, QString::fromLatin1(text));
}

namespace SmallScreens {

constexpr int finger = 44;

inline bool isTarget(const QWidget *widget)
{
    const auto is = [widget](const char *type) { return widget->inherits(type); };
    return widget->isVisible() && !is("QTableCornerButton")
        && !widget->objectName().startsWith("qt_"_q) // part of another
        && (is("QAbstractButton") || is("QComboBox") || is("QAbstractSpinBox") || is("QLineEdit"));
}

inline QByteArray line(const char *fault, const QWidget *widget)
{
    const QString name = widget->accessibleName() + widget->property("text").toString();
    return fault + QByteArray(widget->metaObject()->className()) + ' ' + name.toUtf8() + '\n';
}

/// Where the middle of `widget` is seen in `window`, once its page is scrolled there.
inline QPoint shownAt(const QWidget *widget, const QWidget *window)
{
    QPoint middle = widget->mapTo(window, widget->rect().center());
    for (const QWidget *above = widget; above && above != window; above = above->parentWidget()) {
        const auto *area = qobject_cast<const QScrollArea *>(above);
        if (area)
            middle.setY(qMin(middle.y(), area->mapTo(window, area->rect().bottomLeft()).y()));
    }
    return middle;
}

/// Whether the page is seen whole even beside a bar.
inline bool isSeenWhole(const QScrollArea *area)
{
    const int room = area->viewport()->width();
    return qMax(area->widget()->minimumSizeHint().height(), area->widget()->heightForWidth(room))
        <= area->viewport()->height();
}

/// What is too small, nameless, cut off or out of the Tab key's order in `window`, a line each.
inline QByteArray faults(QWidget *window)
{
    QByteArray found = namelessIn(window);
    const auto widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const auto *area = qobject_cast<const QScrollArea *>(widget);
        if (area && area->isVisible() && area->horizontalScrollBar()->maximum() > 0)
            found += line("sideways: ", area->widget());
        if (area && area->verticalScrollBar()->isVisible() && isSeenWhole(area))
            found += line("needless bar: ", area->widget());
        if (!isTarget(widget))
            continue;
        if (widget->width() < finger || widget->height() < finger)
            found += line("small: ", widget);
    }
    QPoint last;
    for (QWidget *next = window->nextInFocusChain(); next != window;
         next = next->nextInFocusChain()) {
        if (!isTarget(next) || !next->isEnabled() || !(next->focusPolicy() & Qt::TabFocus))
            continue;
        const QPoint here = shownAt(next, window);
        if (here.y() < last.y() - finger / 2)
            found += line("tab goes up: ", next);
        last = here;
    }
    return found;
}

/// Takes a picture of `window` and keeps it for people to look at. Gives the widgets whose words
/// don't stand out there, a line each.
inline QByteArray picture(QWidget *window, const QString &name)
{
    const QDir folder(QDir::cleanPath(QStringLiteral(__FILE__ "/../../artefacts/")));
    const QImage image = window->grab().toImage();
    if (!folder.mkpath("."_q) || !image.save(folder.filePath(name + ".png"_q)))
        return "not kept: " + name.toUtf8();
    QByteArray found;
    const auto widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const QRect whole = widget->rect();
        const bool isTiny = widget->fontMetrics().height() < 10; // no stroke has its full colour
        if (widget->property("text").toString().isEmpty() || isTiny || !widget->isEnabled()
            || widget->visibleRegion().boundingRect() != whole)
            continue;
        QHash<QRgb, int> counts;
        const QPoint corner = widget->mapTo(window, QPoint());
        for (int y = 0; y < whole.height(); ++y) {
            for (int x = 0; x < whole.width(); ++x)
                ++counts[image.pixel(corner + QPoint(x, y))];
        }
        const QRgb behind = std::max_element(counts.cbegin(), counts.cend()).key();
        const auto keys = counts.keys();
        if (std::none_of(keys.begin(), keys.end(),
                         [behind](QRgb color) { return contrast(color, behind) >= 4.5; }))
            found += line("can't be read: ", widget);
    }
    return found;
}

/// Shows `window` on a small screen, as it is and in dark, and looks for faults.
inline QByteArray faultsAt(QWidget *window, const QSize &size, const QString &name)
{
    window->show();
    window->resize(size);
    // Pages settle in a few rounds of the event loop, and may look whole before.
    QTest::qWait(0);
    (void)QTest::qWaitFor([window] { return faults(window).isEmpty(); }, 1000);
    if (window->size() != size)
        return "does not fit: " + name.toUtf8();
    const QString title = "%1-%2"_q.arg(name).arg(size.width());
    const QPalette palette = QApplication::palette();
    QByteArray found = picture(window, title);
    QApplication::setPalette(schemeOf({ QColor(0x20, 0x22, 0x26), Qt::white, Qt::white }));
    QTest::qWait(0);
    found += picture(window, title + "-dark"_q);
    QApplication::setPalette(palette);
    QTest::qWait(0);
    return found + faults(window);
}

/// Fails the test when `window` does not fit into such a screen, whichever way it is held.
inline void check(QWidget *window, const QString &name)
{
    for (const QSize &size : { QSize(800, 480), QSize(480, 800) })
        QCOMPARE(faultsAt(window, size, name), QByteArray());
}

} // namespace SmallScreens

/// Does what is listed in the dialog that `action` brings up: buttons are clicked, and "field=text"
/// is typed. With the name of a picture the dialog is tried on small screens before.
template <typename Action>
void fillIn(Action action, std::initializer_list<QByteArray> steps, const QString &picture = {})
{
    inModal<QDialog>(action, [&](QDialog *dialog) {
        if (!picture.isEmpty())
            SmallScreens::check(dialog, picture);
        for (const QByteArray &step : steps) {
            QVERIFY(dialog->isVisible());
            const auto end = step.indexOf('=');
            if (end < 0)
                click(dialog, step.constData());
            else
                retype(named<QWidget>(dialog, step.left(end).constData()),
                       step.constData() + end + 1);
        }
    });
}

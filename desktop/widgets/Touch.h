#pragma once

#include <QSize>
#include <QWheelEvent>

class QAbstractScrollArea;
class QMenu;
class QWidget;

/// The least height and width of what a finger is to hit, in pixels.
constexpr int fingerSize = 44;

/// That of the picture on a button of its own.
constexpr QSize buttonPicture(32, 32);

/// A control that no layout makes smaller than a finger needs, and no wheel changes.
template <typename Base> class Finger : public Base
{
public:
    using Base::Base;

    QSize sizeHint() const override { return large(Base::sizeHint()); }
    QSize minimumSizeHint() const override { return large(Base::minimumSizeHint()); }

protected:
    /// Who turns the wheel scrolls the page, and changes no value that happens to pass below it.
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }

private:
    static QSize large(const QSize &hint) { return hint.expandedTo({ fingerSize, fingerSize }); }
};

/// Makes the entries of `menu` large enough for fingers, a little less so on a screen that would
/// not have room for all of them else. Where that is too narrow they come without their keys, then
/// with smaller letters.
void sizeForFingers(QMenu *menu);

/// Lets fingers drag the content of `area`.
void scrollByFinger(QAbstractScrollArea *area);

/// Gives `window` the size `wanted`, or what its screen has of it: higher where that is too narrow.
void fitToScreen(QWidget *window, const QSize &wanted);

#include "desktop/widgets/Touch.h"

#include <QAbstractScrollArea>
#include <QMenu>
#include <QScreen>
#include <QScroller>
#include <QStyle>

void sizeForFingers(QMenu *menu)
{
    constexpr int padding = 6;
    menu->setStyleSheet(
        // Dark styles draw no border that is seen.
        QStringLiteral("QMenu { background: palette(base); border: 1px solid palette(highlight); }"
                       "QMenu::item { min-height: %1px; padding: %2px 24px %2px 32px; }"
                       "QMenu::item:selected { background: palette(highlight);"
                       " color: palette(highlighted-text); }")
            .arg(fingerSize - 2 * padding)
            .arg(padding));
}

void scrollByFinger(QAbstractScrollArea *area)
{
    QScroller::grabGesture(area->viewport(), QScroller::TouchGesture);
}

void fitToScreen(QWidget *window, const QSize &wanted)
{
    const int titleBar = window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const QSize room = window->screen()->availableSize() - QSize(0, titleBar);
    // What is missing in width is made up in height.
    const int height = wanted.width() > room.width() ? wanted.width() : wanted.height();
    window->resize(QSize(wanted.width(), height).boundedTo(room));
}

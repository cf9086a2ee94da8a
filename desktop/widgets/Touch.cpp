#include "desktop/widgets/Touch.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QMenu>
#include <QScreen>
#include <QScroller>
#include <QStyle>

#include <algorithm>

namespace {

// Pixels.
constexpr int menuBorder = 1;
constexpr int usualPadding = 6; ///< above and below the text of an entry
constexpr int leftPadding = 32;
constexpr int rightPadding = 24;
constexpr int leastEntry = 36; ///< where the menu would be higher than the screen

/// How high the entries of `menu` are, with letters of this height, for the screen to have room for
/// all of them below each other.
int entryHeight(const QMenu &menu, int letters)
{
    const QList<QAction *> entries = menu.actions();
    const auto shown = std::count_if(entries.begin(), entries.end(),
                                     [](const QAction *entry) { return entry->isVisible(); });
    const int room = menu.screen()->availableSize().height() - 2 * menuBorder;
    const int fitting = room / std::max(1, int(shown));
    const int usual = std::max(fingerSize, letters + 2 * usualPadding);
    return fitting < std::max(leastEntry, letters) ? usual : std::min(fitting, usual);
}

/// One that does not fit even so scrolls, as a second column might not be seen.
void styleEntries(QMenu *menu, int letterSize)
{
    QFont font = QApplication::font(menu);
    font.setPixelSize(letterSize);
    const int letters = QFontMetrics(font).height();
    const int height = entryHeight(*menu, letters);
    const int padding = std::min(usualPadding, (height - letters) / 2);
    menu->setStyleSheet(
        // Dark styles draw no border that is seen.
        QStringLiteral("QMenu { background: palette(base); border: %3px solid palette(highlight);"
                       " font-size: %4px; menu-scrollable: 1; }"
                       "QMenu::item { min-height: %1px; padding: %2px %5px %2px %6px; }"
                       "QMenu::item:selected { background: palette(highlight);"
                       " color: palette(highlighted-text); }")
            .arg(height - 2 * padding)
            .arg(padding)
            .arg(menuBorder)
            .arg(letterSize)
            .arg(rightPadding)
            .arg(leftPadding));
    menu->ensurePolished();
}

void showKeys(const QMenu *menu, bool on)
{
    const QList<QAction *> entries = menu->actions();
    for (QAction *entry : entries)
        entry->setShortcutVisibleInContextMenu(on);
}

/// Long words go before the keys, which other places tell, and before large letters.
void sizeEntries(QMenu *menu)
{
    constexpr int sides = leftPadding + rightPadding + 2 * menuBorder;
    const int room = menu->screen()->availableSize().width();
    const int letterSize = QFontInfo(QApplication::font(menu)).pixelSize();
    showKeys(menu, true);
    styleEntries(menu, letterSize);
    if (menu->sizeHint().width() > room)
        showKeys(menu, false);
    if (const int width = menu->sizeHint().width(); width > room)
        styleEntries(menu, letterSize * (room - sides) / (width - sides));
}

} // namespace

void sizeForFingers(QMenu *menu)
{
    sizeEntries(menu);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu] { sizeEntries(menu); });
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

#include "desktop/widgets/PageView.h"

#include "desktop/widgets/Touch.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>

namespace {

constexpr int iconSize = 80;
constexpr int listWidth = 82;
constexpr int listWidthWithBar = 100;
constexpr int labelMargin = 4;
constexpr int smallestLabel = 6; // points

/// `font`, or a smaller one in which `label` fits under an icon.
QFont labelFont(QFont font, const QString &label)
{
    while (font.pointSize() > smallestLabel
           && QFontMetrics(font).horizontalAdvance(label) > iconSize - 2 * labelMargin)
        font.setPointSize(font.pointSize() - 1);
    return font;
}

void sizeItem(QListWidgetItem *item, const QFont &font)
{
    const QFont fitting = labelFont(font, item->text());
    const int label = QFontMetrics(fitting).height() + 2 * labelMargin;
    item->setFont(fitting);
    item->setSizeHint({ iconSize, item->icon().isNull() ? fingerSize : iconSize + label });
}

} // namespace

PageView::PageView(QWidget *parent)
    : QWidget(parent)
    , list(new QListWidget)
    , pages(new QStackedWidget)
{
    list->setViewMode(QListView::IconMode);
    list->setFlow(QListView::TopToBottom);
    list->setWrapping(false);
    list->setMovement(QListView::Static);
    list->setIconSize({ iconSize, iconSize });
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setAccessibleName(tr("Pages"));
    scrollByFinger(list);
    sizeList();

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(list);
    row->addWidget(pages, 1);

    connect(list, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
    connect(list, &QListWidget::currentRowChanged, this, &PageView::pageTurned);
    connect(list->verticalScrollBar(), &QScrollBar::rangeChanged, this, &PageView::sizeList);
}

void PageView::addPage(const QString &label, const QString &icon, QWidget *page)
{
    auto *item = new QListWidgetItem(QIcon(icon), label, list);
    sizeItem(item, font());

    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    scrollByFinger(area);
    pages->addWidget(area);
}

void PageView::setCurrentRow(int row)
{
    list->setCurrentRow(row >= 0 && row < list->count() ? row : 0);
}

int PageView::currentRow() const
{
    return list->currentRow();
}

void PageView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        sizeItems();
}

void PageView::sizeItems()
{
    for (int row = 0; row < list->count(); ++row)
        sizeItem(list->item(row), font());
}

void PageView::sizeList()
{
    const bool scrolls = list->verticalScrollBar()->maximum() > 0;
    list->setFixedWidth(scrolls ? listWidthWithBar : listWidth);
    list->scrollToItem(list->currentItem());
}

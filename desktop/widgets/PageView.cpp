#include "desktop/widgets/PageView.h"

#include "desktop/widgets/Fields.h"

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
    , m_list(new QListWidget)
    , pages(new QStackedWidget)
{
    m_list->setViewMode(QListView::IconMode);
    m_list->setFlow(QListView::TopToBottom);
    m_list->setWrapping(false);
    m_list->setMovement(QListView::Static);
    m_list->setIconSize({ iconSize, iconSize });
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAccessibleName(tr("Pages"));
    scrollByFinger(m_list);
    sizeList();

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_list);
    row->addWidget(pages, 1);

    connect(m_list, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
    connect(m_list->verticalScrollBar(), &QScrollBar::rangeChanged, this, &PageView::sizeList);
}

void PageView::addPage(const QString &label, const QString &icon, QWidget *page)
{
    auto *item = new QListWidgetItem(fileIcon(icon), label, m_list);
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
    m_list->setCurrentRow(row >= 0 && row < m_list->count() ? row : 0);
}

int PageView::currentRow() const
{
    return m_list->currentRow();
}

void PageView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        sizeItems();
}

void PageView::sizeItems()
{
    for (int row = 0; row < m_list->count(); ++row)
        sizeItem(m_list->item(row), font());
}

void PageView::sizeList()
{
    const bool scrolls = m_list->verticalScrollBar()->maximum() > 0;
    m_list->setFixedWidth(scrolls ? listWidthWithBar : listWidth);
    m_list->scrollToItem(m_list->currentItem());
}

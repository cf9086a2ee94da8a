#include "desktop/window/AddressTable.h"

#include "desktop/widgets/Fields.h"

#include <QCursor>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>

namespace {

constexpr int leastVisibleRows = 2;
constexpr QSize pictureSize(24, 24);

} // namespace

AddressTable::AddressTable(QWidget *parent)
    : QTableWidget(0, ColumnCount, parent)
{
    setHorizontalHeaderLabels({ tr("Address"), tr("Config"), tr("Status") });
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setDefaultSectionSize(fingerSize);
    verticalHeader()->setMinimumSectionSize(fingerSize);
    verticalHeader()->hide();
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setIconSize(pictureSize);
    setTabKeyNavigation(false);
    setAccessibleName(tr("Listen Addresses"));

    for (const int key : { Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Menu }) {
        auto *shortcut = new QShortcut(QKeySequence(key), this);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &AddressTable::pressCurrentCell);
    }
}

void AddressTable::setExpert(bool on)
{
    QHeaderView *header = horizontalHeader();
    header->setVisible(on);
    // A long name of a profile is shortened, never the address.
    header->setSectionResizeMode(AddressColumn,
                                 on ? QHeaderView::ResizeToContents : QHeaderView::Stretch);
    header->setSectionResizeMode(ConfigColumn, QHeaderView::Stretch);
    setSelectionMode(on ? QAbstractItemView::SingleSelection : QAbstractItemView::NoSelection);
    setColumnHidden(ConfigColumn, !on);
    setColumnHidden(StatusColumn, !on);
}

void AddressTable::popup(QMenu *menu, int row, int column)
{
    const QRect cell = visualRect(model()->index(row, column));
    const QPoint cursor = viewport()->mapFromGlobal(QCursor::pos());
    menu->popup(viewport()->mapToGlobal(cell.contains(cursor) ? cursor : cell.center()));
}

QSize AddressTable::minimumSizeHint() const
{
    const int header = horizontalHeader()->isHidden() ? 0 : horizontalHeader()->sizeHint().height();
    const int height = header + leastVisibleRows * fingerSize + 2 * frameWidth();
    return { QTableWidget::minimumSizeHint().width(), height };
}

void AddressTable::pressCurrentCell()
{
    if (currentItem())
        Q_EMIT cellPressed(currentRow(), currentColumn());
}

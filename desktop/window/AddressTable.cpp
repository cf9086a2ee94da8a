#include "desktop/window/AddressTable.h"

#include "config/Profile.h"
#include "desktop/widgets/Touch.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "desktop/window/StartStop.h"

#include <QCursor>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QSignalBlocker>

namespace {

constexpr int leastVisibleRows = 2;
constexpr QSize pictureSize(24, 24);

} // namespace

AddressTable::AddressTable(ServerRows *servers, QWidget *parent)
    : QTableWidget(0, ColumnCount, parent)
    , rows(servers)
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
    connect(this, &QTableWidget::cellPressed, this, [this](int row, int column) {
        if (column != StatusColumn)
            Q_EMIT cellChosen(row, column);
    });
    connect(this, &QTableWidget::cellClicked, this, [this](int row, int column) {
        if (column == StatusColumn)
            Q_EMIT cellChosen(row, column);
    });
    followRows();
}

void AddressTable::followRows()
{
    connect(rows, &ServerRows::rowAdded, this, &AddressTable::add);
    connect(rows, &ServerRows::rowRemoved, this, &AddressTable::drop);
    connect(rows, &ServerRows::currentChanged, this,
            [this] { setCurrentCell(rows->currentIndex(), qMax(0, currentColumn())); });
    connect(rows->mode(), &GlobalMode::modeChanged, this, &AddressTable::showMode);
    connect(this, &QTableWidget::currentCellChanged, rows, &ServerRows::setCurrent);
    for (ServerRow *row : rows->all())
        add(row);
    showMode();
    setCurrentCell(rows->currentIndex(), AddressColumn);
}

void AddressTable::add(ServerRow *row)
{
    const int index = rowCount();
    insertRow(index);
    for (int column = 0; column < ColumnCount; ++column) {
        auto *cell = new QTableWidgetItem;
        cell->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        setItem(index, column, cell);
    }
    showRow(row);
    setRowHidden(index, !rows->isShown(row));
    connect(row, &ServerRow::changed, this, [this, row] { showRow(row); });
    connect(row, &ServerRow::reachChanged, this, [this, row] { showRow(row); });
}

void AddressTable::drop(int index)
{
    // The rows know best which one is current then.
    const QSignalBlocker quiet(this);
    removeRow(index);
    setCurrentCell(rows->currentIndex(), qMax(0, currentColumn()));
}

void AddressTable::showRow(ServerRow *row)
{
    const int index = int(rows->all().indexOf(row));
    if (index < 0)
        return;
    const WebServer *server = row->server();
    const QString profile = row->profile()->name;
    item(index, AddressColumn)
        ->setText(
            QStringLiteral("%1:%2").arg(row->address().toString(), QString::number(server->port)));
    item(index, ConfigColumn)->setText(profile);
    item(index, ConfigColumn)->setToolTip(profile.toHtmlEscaped());
    QTableWidgetItem *status = item(index, StatusColumn);
    status->setText(QStringLiteral("%1 %2KB").arg(
        startStopText(row->isListening()), shownKB(server->sentBytes() + server->receivedBytes())));
    status->setIcon(startStopIcon(row->isListening()));
}

void AddressTable::showMode()
{
    const bool on = rows->mode()->isExpert();
    for (int index = 0; index < rowCount(); ++index)
        setRowHidden(index, !rows->isShown(rows->at(index)));
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

QSize AddressTable::sizeHint() const
{
    return { QTableWidget::sizeHint().width(), minimumSizeHint().height() };
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
        Q_EMIT cellChosen(currentRow(), currentColumn());
}

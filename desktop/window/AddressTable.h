#pragma once

#include <QTableWidget>

class QMenu;
class ServerRow;
class ServerRows;

/// The table of server rows: their addresses alone in simple mode, in expert mode their profiles
/// and states too. A child of the address list.
class AddressTable : public QTableWidget
{
    Q_OBJECT
public:
    enum Column { AddressColumn, ConfigColumn, StatusColumn, ColumnCount };

    /// Shows `servers`, which outlive the table, and keeps up with them.
    AddressTable(ServerRows *servers, QWidget *parent);

    /// Shows what belongs to the mode.
    void showMode();

    /// Opens `menu` where the cell was pressed.
    void popup(QMenu *menu, int row, int column);

    QSize minimumSizeHint() const override;

    /// No more: the table takes what room there is, and is not to push the window's foot out of it.
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user wants what belongs to the cell. A state, which starts and stops, is only taken by
    /// the left button that is released where it was pressed; or by a key.
    void cellChosen(int row, int column);

private:
    void followRows();
    void add(ServerRow *row);
    void drop(int index);
    void showRow(ServerRow *row);
    void pressCurrentCell();

    ServerRows *rows;
};

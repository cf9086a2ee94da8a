#pragma once

#include <QTableWidget>

class QMenu;

/// The table of server items: their addresses alone in simple mode, in expert mode their profiles
/// and states too. A child of the address list, which owns the cells. A press on a cell, by finger
/// or by key, is told by `cellPressed`.
class AddressTable : public QTableWidget
{
    Q_OBJECT
public:
    enum Column { AddressColumn, ConfigColumn, StatusColumn, ColumnCount };

    explicit AddressTable(QWidget *parent);

    void setExpert(bool on);

    /// Opens `menu` where the cell was pressed.
    void popup(QMenu *menu, int row, int column);

    QSize minimumSizeHint() const override;

private:
    void pressCurrentCell();
};

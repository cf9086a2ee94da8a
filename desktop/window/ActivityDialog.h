#pragma once

#include "desktop/window/VisitTable.h"

#include <QDialog>
#include <QTimer>

class DeedLog;
class PeerCount;
class QAbstractItemModel;
class QPushButton;
class QTabWidget;
class QTreeView;
class QVBoxLayout;
class ServerRows;

/// Shows who is here, what moves, and what was done lately, and lets the user end it. Open beside
/// the main window, whose child it is.
class ActivityDialog : public QDialog
{
    Q_OBJECT
public:
    /// All are borrowed and outlive it. `deeds` go on while it is closed, and into `logFile`.
    ActivityDialog(ServerRows *servers, PeerCount *peers, DeedLog *deeds, const QString &logFile,
                   QWidget *parent);

    /// Brings what moves up to date. Happens once a second while it is shown.
    void refresh();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QTreeView *addTable(const QString &label, QAbstractItemModel *model);
    void addLogSwitch(const QString &logFile);
    void addButtons();
    const KeyedTable::Row *chosen() const;
    void disconnectChosen();
    void blockChosen();
    void unblock();
    void updateButtons();

    ServerRows *rows;
    PeerCount *places;
    KeyedTable visitors;
    KeyedTable transfers;
    TransferRows moving;
    QTimer timer;
    QVBoxLayout *column;
    QTabWidget *tabs;
    QTreeView *visitorView = nullptr;
    QTreeView *transferView = nullptr;
    QPushButton *disconnecting = nullptr;
    QPushButton *blocking = nullptr;
    QPushButton *unblocking = nullptr;
};

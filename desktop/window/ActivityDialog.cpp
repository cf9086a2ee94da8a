#include "desktop/window/ActivityDialog.h"

#include "desktop/widgets/Buttons.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/widgets/Touch.h"
#include "desktop/widgets/TurningRow.h"
#include "desktop/window/Activity.h"
#include "desktop/window/DeedLog.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"
#include "server/PeerCount.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTabWidget>
#include <QToolTip>
#include <QTreeView>
#include <QVBoxLayout>

using namespace std::chrono_literals;

namespace {

constexpr QSize activitySize(640, 420);
constexpr int leastColumn = 48; ///< pixels

/// Rows that a finger can choose.
class FingerRows : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo({ 0, fingerSize });
    }
};

class FingerTabBar : public QTabBar
{
protected:
    QSize tabSizeHint(int index) const override
    {
        return QTabBar::tabSizeHint(index).expandedTo({ fingerSize, fingerSize });
    }
};

class FingerTabs : public QTabWidget
{
public:
    FingerTabs() { setTabBar(new FingerTabBar); }
};

/// All of a network that is counted as one is blocked with it.
QString peerText(const QHostAddress &peer)
{
    const QString whole = peer.toString() + QLatin1String("/64");
    const bool isNetwork = peer.protocol() == QAbstractSocket::IPv6Protocol
        && QHostAddress::parseSubnet(whole).first == peer;
    return isNetwork ? whole : peer.toString();
}

std::vector<ServerVisit> visitsOf(const ServerRows &rows)
{
    std::vector<ServerVisit> all;
    for (const ServerRow *row : rows.all()) {
        for (Visit &visit : row->server()->visits())
            all.push_back({ row->server(), std::move(visit) });
    }
    return all;
}

} // namespace

ActivityDialog::ActivityDialog(ServerRows *servers, PeerCount *peers, DeedLog *deeds,
                               const QString &logFile, QWidget *parent)
    : QDialog(parent)
    , rows(servers)
    , places(peers)
    , visitors({ tr("Address"), tr("Name"), tr("Program"), tr("Since") })
    , transfers(
          { tr("File"), tr("Direction"), tr("Done"), tr("Speed"), tr("Time left"), tr("Address") })
    , column(new QVBoxLayout(this))
    , tabs(new FingerTabs)
{
    setWindowTitle(tr("Visitors and transfers"));
    column->addWidget(tabs);
    visitorView = addTable(tr("Visitors"), &visitors);
    transferView = addTable(tr("Transfers"), &transfers);
    transferView->header()->setStretchLastSection(false);
    transferView->header()->setMinimumSectionSize(leastColumn);
    transferView->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    addTable(tr("Events"), deeds);
    addLogSwitch(logFile);
    addButtons();
    connect(&timer, &QTimer::timeout, this, &ActivityDialog::refresh);
    connect(tabs, &QTabWidget::currentChanged, this, &ActivityDialog::updateButtons);
    updateButtons();
    fitToScreen(this, activitySize);
}

QTreeView *ActivityDialog::addTable(const QString &label, QAbstractItemModel *model)
{
    auto *view = new QTreeView;
    view->setModel(model);
    view->setItemDelegate(new FingerRows(view));
    view->setRootIsDecorated(false);
    view->setUniformRowHeights(true);
    view->setAllColumnsShowFocus(true);
    view->setTextElideMode(Qt::ElideMiddle);
    view->setAccessibleName(label);
    view->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view->header()->setStretchLastSection(true);
    scrollByFinger(view);
    tabs->addTab(view, label);
    // What is shortened is whole there; a finger does not hover.
    connect(view, &QTreeView::clicked, view, [view](const QModelIndex &index) {
        QToolTip::showText(QCursor::pos(), index.data(Qt::ToolTipRole).toString(), view);
    });
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ActivityDialog::updateButtons);
    return view;
}

void ActivityDialog::addLogSwitch(const QString &logFile)
{
    auto *box = new Finger<QCheckBox>(tr("Keep a log of events"));
    box->setToolTip(logFile);
    box->setChecked(Activity::keepsLog());
    connect(box, &QCheckBox::toggled, this, &Activity::keepLog);
    column->addWidget(box);
}

void ActivityDialog::addButtons()
{
    disconnecting = newButton(tr("Disconnect"));
    blocking = newButton(tr("Block"));
    unblocking = newButton(tr("Unblock all"));
    QPushButton *closing = newButton(tr("Close"));
    auto *row = new TurningRow;
    for (QPushButton *button : { unblocking, blocking, disconnecting, closing })
        row->add(button, 1);
    column->addWidget(row);
    connect(disconnecting, &QPushButton::clicked, this, &ActivityDialog::disconnectChosen);
    connect(blocking, &QPushButton::clicked, this, &ActivityDialog::blockChosen);
    connect(unblocking, &QPushButton::clicked, this, &ActivityDialog::unblock);
    connect(closing, &QPushButton::clicked, this, &QDialog::close);
}

void ActivityDialog::showEvent(QShowEvent *event)
{
    refresh();
    timer.start(1s);
    QDialog::showEvent(event);
}

void ActivityDialog::hideEvent(QHideEvent *event)
{
    timer.stop();
    QDialog::hideEvent(event);
}

void ActivityDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    // The visitors' page has the addresses, too; the names of files need the room.
    transferView->setColumnHidden(TransferRows::Address, width() < activitySize.width());
}

void ActivityDialog::refresh()
{
    const std::vector<ServerVisit> visits = visitsOf(*rows);
    visitors.show(visitorRows(visits));
    transfers.show(moving.look(visits, TransferRows::Clock::now()));
    updateButtons();
}

/// Null when nothing is, or only an event.
const KeyedTable::Row *ActivityDialog::chosen() const
{
    const QWidget *shown = tabs->currentWidget();
    if (shown == visitorView)
        return visitors.row(visitorView->currentIndex());
    if (shown == transferView)
        return transfers.row(transferView->currentIndex());
    return nullptr;
}

void ActivityDialog::disconnectChosen()
{
    const KeyedTable::Row *row = chosen();
    if (!row)
        return;
    const QString key = row->key;
    const bool isTransfer = tabs->currentWidget() == transferView;
    for (const ServerRow *each : rows->all()) {
        WebServer *server = each->server();
        server->disconnect([&](const Visit &visit) {
            return key == (isTransfer ? keyOf({ server, visit }) : visitorKey(visit.client));
        });
    }
    refresh();
}

void ActivityDialog::blockChosen()
{
    const KeyedTable::Row *row = chosen();
    if (!row || row->counted.isNull())
        return;
    const QHostAddress peer = row->counted;
    const QString question = tr("Block %1 until Quillon ends? Its connections are cut.");
    if (!askYesNo(this, question.arg(peerText(peer))))
        return;
    places->block(peer);
    for (const ServerRow *each : rows->all())
        each->server()->disconnect([&](const Visit &visit) { return visit.counted == peer; });
    refresh();
}

void ActivityDialog::unblock()
{
    places->unblockAll();
    updateButtons();
}

void ActivityDialog::updateButtons()
{
    const KeyedTable::Row *row = chosen();
    disconnecting->setEnabled(row);
    blocking->setEnabled(row && !row->counted.isNull());
    unblocking->setEnabled(places->blocksAny());
}

#include "desktop/window/EventHandler.h"

#include "desktop/widgets/Fields.h"
#include "desktop/window/TrafficSource.h"

#include <QAbstractButton>
#include <QMessageBox>

#include <chrono>

using namespace std::chrono_literals;

EventHandler *EventHandler::eventHandler = nullptr;
QPointer<QLabel> EventHandler::statusWidget;
TrafficSource *EventHandler::addressList = nullptr;
QString EventHandler::lastAddress;

namespace {

constexpr auto refreshInterval = 2000ms;

// The status line counts in thousands, though the traffic limit is set in units of 1024 bytes.
constexpr qint64 bytesPerShownKB = 1000;

} // namespace

EventHandler::EventHandler(QWidget *parent)
    : window(parent)
{
    eventHandler = this;
    lastAddress.clear();
    statusWidget = new QLabel;
    statusWidget->setWordWrap(true);
    connect(&timer, &QTimer::timeout, this, &EventHandler::sendDataInfo);
}

EventHandler::~EventHandler()
{
    eventHandler = nullptr;
    if (statusWidget && !statusWidget->parent())
        delete statusWidget;
}

void EventHandler::startTimer()
{
    if (!timer.isActive())
        timer.start(refreshInterval);
}

void EventHandler::stopTimer()
{
    timer.stop();
}

void EventHandler::newConnection(const QString &peer)
{
    if (peer == lastAddress)
        return;
    stopTimer();
    lastAddress = peer;
    sendDataInfo();
}

void EventHandler::sendDataInfo()
{
    if (lastAddress.isEmpty())
        return;

    const qint64 total = addressList ? addressList->totalTraffic() : 0;
    if (addressList)
        addressList->updateListening();
    const QString count = QStringLiteral("%1KB ").arg(total / bytesPerShownKB);
    statusmsg(count + tr("Last connection") + QLatin1String(": ") + lastAddress);
    startTimer();
}

void EventHandler::msg(const QString &title, const QString &text)
{
    const QString whole = title + QLatin1Char('\n') + text;
    if (boxes.contains(whole) || boxes.size() > maxWaitingBoxes)
        return;
    boxes.append(whole);
    // Queued: the caller may be a connection in the middle of its request.
    if (boxes.size() == 1)
        QMetaObject::invokeMethod(this, &EventHandler::showBox, Qt::QueuedConnection);
}

void EventHandler::showBox()
{
    auto *box = new QMessageBox(QMessageBox::Warning, QString(), boxes.constFirst(),
                                QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    connect(box, &QDialog::finished, this, &EventHandler::boxClosed);
    box->setModal(true);
    box->button(QMessageBox::Ok)->setMinimumSize(2 * fingerSize, fingerSize);
    box->show();
}

void EventHandler::boxClosed()
{
    boxes.removeFirst();
    if (!boxes.isEmpty())
        QMetaObject::invokeMethod(this, &EventHandler::showBox, Qt::QueuedConnection);
}

void EventHandler::statusmsg(const QString &text)
{
    if (statusWidget)
        statusWidget->setText(QLatin1String("<center>") + text + QLatin1String("</center>"));
}

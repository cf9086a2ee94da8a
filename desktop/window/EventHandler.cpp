#include "desktop/window/EventHandler.h"

#include "desktop/widgets/Prompts.h"
#include "desktop/window/DeedLog.h"
#include "desktop/window/TrafficSource.h"
#include "server/PeerAddress.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto refreshInterval = 2000ms;
constexpr auto gatherDeeds = 1000ms;
constexpr auto noteTime = 10s;
constexpr int maxShownNotes = 3; ///< at once
constexpr auto gatherTime = 100ms; ///< ten reports a second, however many clients come

} // namespace

EventHandler::EventHandler()
{
    connect(&timer, &QTimer::timeout, this, &EventHandler::sendDataInfo);
}

void EventHandler::showBoxesOver(QWidget *parent)
{
    window = parent;
    queueNext();
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
    lastAddress = peer;
    Q_EMIT visitorCame(peer);
    if (!timer.isActive() || timer.remainingTimeAsDuration() > gatherTime)
        timer.start(gatherTime);
}

void EventHandler::sendDataInfo()
{
    if (lastAddress.isEmpty())
        return;

    const qint64 total = traffic ? traffic->totalTraffic() : 0;
    if (traffic)
        traffic->updateListening();
    statusmsg(shownKB(total) + QLatin1String("KB ") + tr("Last connection") + QLatin1String(": ")
              + lastAddress);
    timer.start(refreshInterval);
}

void EventHandler::msg(const QString &title, const QString &text)
{
    const QString whole = title + QLatin1Char('\n') + text;
    if (boxes.contains(whole) || boxes.size() > maxWaitingBoxes)
        return;
    boxes.append(whole);
    if (boxes.size() == 1)
        queueNext();
}

void EventHandler::told(const Deed &deed)
{
    if (!isTelling(deed))
        return;
    if (deeds.empty())
        QTimer::singleShot(gatherDeeds, this, &EventHandler::passDeeds);
    const auto isHis = [who = peerOf(deed.client.address)](const Deed &other) {
        return peerOf(other.client.address) == who;
    };
    if (std::count_if(deeds.begin(), deeds.end(), isHis) >= maxDeedsOfOne) {
        missedDeeds = true;
        return;
    }
    deeds.push_back(deed);
}

void EventHandler::passDeeds()
{
    const bool isAll = !std::exchange(missedDeeds, false) && listens();
    Q_EMIT deedsDone(std::exchange(deeds, {}), isAll);
}

void EventHandler::queueNext()
{
    // Queued: the caller may be a connection in the middle of its request.
    if (window && !boxes.isEmpty())
        QMetaObject::invokeMethod(this, &EventHandler::showNext, Qt::QueuedConnection);
}

void EventHandler::showNext()
{
    if (!window)
        return;
    const QMessageBox *box = showBox(window, QMessageBox::Warning, boxes.constFirst());
    connect(box, &QDialog::finished, this, &EventHandler::boxClosed);
}

void EventHandler::boxClosed()
{
    boxes.removeFirst();
    queueNext();
}

void EventHandler::note(const QString &text)
{
    // Queued: one more may follow at once, and both are to be seen.
    if (notes.isEmpty())
        QMetaObject::invokeMethod(this, &EventHandler::showNotes, Qt::QueuedConnection);
    if (notes.size() < maxShownNotes)
        notes.append(text.toHtmlEscaped());
    Q_EMIT noted(text);
}

void EventHandler::showNotes()
{
    statusmsg(std::exchange(notes, {}).join(QLatin1String("<br>")));
    if (timer.isActive())
        timer.start(noteTime);
}

void EventHandler::statusmsg(const QString &text)
{
    Q_EMIT statusChanged(QLatin1String("<center>") + text + QLatin1String("</center>"));
}

#pragma once

#include "server/StatusSink.h"

#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

class QWidget;
class TrafficSource;

/// The desktop's status sink: a label with the total traffic and the last client, and message
/// boxes. The main window owns the only one, which outlives all servers; while it lives,
/// `eventHandler` points to it.
class EventHandler : public QObject, public StatusSink
{
    Q_OBJECT
public:
    /// Different messages that wait behind an open box; further ones are dropped.
    static constexpr int maxWaitingBoxes = 16;

    static EventHandler *eventHandler;
    static QPointer<QLabel> statusWidget; ///< without a parent until the window takes it
    static TrafficSource *addressList; ///< borrowed, may be null
    static QString lastAddress; ///< peer of the newest client

    /// Message boxes stand over `parent`, which outlives the handler.
    explicit EventHandler(QWidget *parent);
    ~EventHandler() override;

    QLabel *getStatusWidget() const { return statusWidget; }

    /// Starts or stops the refreshing of the label, every two seconds.
    void startTimer();
    void stopTimer();
    bool isTimerRunning() const { return timer.isActive(); }

public Q_SLOTS:
    void newConnection(const QString &peer) override;
    void sendDataInfo();

    /// Queues a warning box of both texts. Returns at once, so that it can be called from inside a
    /// connection; a text whose box is open or waiting is not shown again.
    void msg(const QString &title, const QString &text) override;
    void statusmsg(const QString &text);

private:
    void showBox();
    void boxClosed();

    QWidget *window;
    QTimer timer;
    QStringList boxes; ///< texts; the first one is being shown
};

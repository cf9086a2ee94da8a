#pragma once

#include "server/Activity.h"
#include "server/StatusSink.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <vector>

class QWidget;
class TrafficSource;

/// The desktop's status sink: message boxes, and a status line with the total traffic and the last
/// client. Made in `main`; outlives the main window and all servers.
class EventHandler : public QObject, public StatusSink
{
    Q_OBJECT
public:
    /// Different messages that wait behind an open box; further ones are dropped.
    static constexpr int maxWaitingBoxes = 16;

    /// Of the requests that end within a second so many are noted, in all and of one visitor.
    static constexpr int maxDeeds = 50;
    static constexpr int maxDeedsOfOne = 10;

    EventHandler();

    /// Message boxes stand over `parent` from now on; those told before have waited for it.
    void showBoxesOver(QWidget *parent);

    /// Whose traffic is shown from now on; null, before it goes, for nobody's.
    void watch(TrafficSource *source) { traffic = source; }

    /// Starts or stops the refreshing of the status line, every two seconds.
    void startTimer();
    void stopTimer();

    void newConnection(const QString &peer) override;

    /// Queues a warning box of both texts. Returns at once, so that it can be called from inside a
    /// connection; a text whose box is open or waiting is not shown again.
    void msg(const QString &title, const QString &text) override;

    /// The row that is to start brings a box that helps.
    bool knowsKeyProblems() const override { return true; }

    bool listens() const override { return deeds.size() < std::size_t(maxDeeds); }
    void told(const Deed &deed) override;

public Q_SLOTS:
    /// Shows traffic and last client, once there was one.
    void sendDataInfo();
    void statusmsg(const QString &text);

    /// Something that the user should know and has not asked for, plain: stays in the status line
    /// for a while.
    void note(const QString &text);

Q_SIGNALS:
    /// The status line shows `text`, HTML, from now on.
    void statusChanged(const QString &text);

    void visitorCame(const QString &address);
    void noted(const QString &text);

    /// What was told within the last second; `isAll` unless there was more.
    void deedsDone(const std::vector<Deed> &deeds, bool isAll);

private:
    void queueNext();
    void showNext();
    void boxClosed();
    void passDeeds();
    void showNotes();

    QPointer<QWidget> window;
    TrafficSource *traffic = nullptr;
    QString lastAddress; ///< peer of the newest client
    QTimer timer;
    QStringList boxes; ///< texts; the first one is being shown
    QStringList notes; ///< to be shown together, escaped
    std::vector<Deed> deeds; ///< to be told together
    bool missedDeeds = false; ///< there were more
};

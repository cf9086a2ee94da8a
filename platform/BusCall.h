#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

using Answered = std::function<void(const QDBusMessage &answer)>;

/// Sends the method call and never waits for the program that it is meant for. `answered` gets the
/// answer, or the error (also when there is no bus, or nobody answers within half a minute), from
/// the event loop, unless `asker` is gone by then.
void ask(const QDBusConnection &bus, const QDBusMessage &call, QObject *asker, Answered answered);

inline bool isRefused(const QDBusMessage &answer)
{
    return answer.type() != QDBusMessage::ReplyMessage;
}

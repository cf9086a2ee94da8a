#pragma once

#include "files/FileDescriptor.h"

#include <QLocalServer>
#include <QObject>
#include <QString>

class QLocalSocket;

/// Makes one window of all starts by a user: later ones hand over what they were to share, and end.
/// Made in `main` before the window.
class FirstInstance : public QObject
{
    Q_OBJECT
public:
    /// `folder` is the user's own and ends with a slash.
    explicit FirstInstance(const QString &folder);

    /// Hands `path`, absolute or empty, to the window that runs already. False when none runs, and
    /// later starts are heard from now on, or when it doesn't answer.
    bool handOver(const QString &path);

Q_SIGNALS:
    /// Another start; `path` is what it was to share, empty for nothing.
    void called(const QString &path);

private:
    void listen();
    bool tell(const QByteArray &message) const;
    void hear(QLocalSocket *caller);
    void answer(QLocalSocket *caller);

    const QString name;
    FileDescriptor lock; ///< held as long as this window runs, however it ends
    QLocalServer server;
};

#pragma once

#include "desktop/window/StartRequest.h"
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

    /// Hands `request` to the window that runs already. False when none runs, and later starts are
    /// heard from now on, or when it doesn't answer.
    bool handOver(const StartRequest &request);

Q_SIGNALS:
    void called(const StartRequest &request); ///< by another start

private:
    void listen();
    bool tell(const QByteArray &message) const;
    void hear(QLocalSocket *caller);
    void answer(QLocalSocket *caller);

    const QString name;
    FileDescriptor lock; ///< held as long as this window runs, however it ends
    QLocalServer server;
};

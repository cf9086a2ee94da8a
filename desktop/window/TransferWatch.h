#pragma once

#include <QObject>
#include <QTimer>

class ServerRows;

/// Looks whether files are being transferred, while servers run. A part of the main window.
class TransferWatch : public QObject
{
    Q_OBJECT
public:
    /// `watched` are borrowed.
    explicit TransferWatch(ServerRows *watched);

Q_SIGNALS:
    /// Every second while servers run, more often while files move, and at their end.
    void looked(bool moves);

private:
    void look();
    bool tell();
    void follow(bool running);

    ServerRows *rows;
    QTimer timer;
    QTimer ends;
};

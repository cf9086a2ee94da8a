#pragma once

#include <QByteArray>

class RequestReader;
class Socket;

/// Collects the beginning of a request body in memory. It calls nobody.
class BodyCollector
{
public:
    /// At most `most` bytes will be collected.
    void start(qint64 most);

    /// Takes what has arrived. True when all of the bytes are there, or no more of them will come.
    bool collectForm(RequestReader &reader, Socket &socket);

    /// Takes what has arrived of a part's headers. True once their blank line is there, or won't
    /// come; nothing is collected then.
    bool collectPartHead(RequestReader &reader, Socket &socket);

    /// What was collected.
    QByteArray take();

private:
    qint64 room() const { return limit - bytes.size(); }

    qint64 limit = 0;
    QByteArray bytes;
};

#pragma once

#include "net/DescriptorSocket.h"

/// A connection without encryption.
class PlainSocket final : public DescriptorSocket
{
public:
    /// As its base.
    PlainSocket(FileDescriptor accepted, const QHostAddress &peerAddress, Poller *watcher,
                TrafficAccount *counter)
        : DescriptorSocket(std::move(accepted), peerAddress, watcher, counter)
    {
    }

    bool isEncrypted() const override { return false; }
    bool isEstablished() const override { return true; }

private:
    qint64 receive(char *data, qint64 max) override { return takeNow(data, max); }
    Pipe *ownPipe() override { return sharedPipe(); }
    qint64 receiveInto(Pipe &pipe, qint64 max) override { return takeNow(pipe, max); }
    bool send(const QByteArray &bytes, bool more) override;
    qint64 send(int file, qint64 offset, qint64 count) override;
    qint64 sendSmall(int file, qint64 offset, qint64 count);
};

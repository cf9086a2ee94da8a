#pragma once

#include <QString>

/// Where the server core reports what happens: new clients and warnings.
/// The programs implement it; an implementation must return at once and must outlive its servers.
class StatusSink
{
public:
    StatusSink() = default;
    virtual ~StatusSink() = default;

    /// A request arrived from `peer`, an address as text.
    virtual void newConnection(const QString &peer) = 0;

    /// Something the user should know. Both texts are translated and end without a line feed.
    virtual void msg(const QString &title, const QString &text) = 0;

private:
    Q_DISABLE_COPY(StatusSink)
};

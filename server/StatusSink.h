#pragma once

#include <QString>

struct Deed;

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

    /// Whether the user hears from elsewhere why keys can't be used, once something is to be served
    /// with them; else `msg` says so wherever they are read.
    virtual bool knowsKeyProblems() const { return false; }

    /// Whether it wants to hear of requests that are over, see `told`. Asked at each of them.
    virtual bool listens() const { return false; }

    /// One of them.
    virtual void told(const Deed &deed) { Q_UNUSED(deed) }

private:
    Q_DISABLE_COPY(StatusSink)
};

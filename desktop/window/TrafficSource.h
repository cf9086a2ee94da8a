#pragma once

#include <QtGlobal>

/// The servers whose traffic the status line sums up. The address table implements it; an
/// implementation takes itself out of `EventHandler::addressList` when it goes.
class TrafficSource
{
public:
    TrafficSource() = default;
    virtual ~TrafficSource() = default;

    /// Bytes sent and received by all servers, listening or not.
    virtual qint64 totalTraffic() const = 0;

    /// Shows the counts of the listening servers anew.
    virtual void updateListening() = 0;

private:
    Q_DISABLE_COPY(TrafficSource)
};

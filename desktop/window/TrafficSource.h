#pragma once

#include <QString>

/// The servers whose traffic the status line sums up.
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

/// A count of bytes as it is shown. In thousands, though the traffic limit is set in units of 1024
/// bytes.
inline QString shownKB(qint64 bytes)
{
    constexpr qint64 bytesPerShownKB = 1000;
    return QString::number(bytes / bytesPerShownKB);
}

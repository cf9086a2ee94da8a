#include "server/UsualLines.h"

#include "server/HttpDate.h"

#include <ctime>

/// Made once a second.
const QByteArray &usualLines()
{
    thread_local std::time_t made = 0;
    thread_local QByteArray lines;
    const std::time_t now = std::time(nullptr);
    if (now != made) {
        made = now;
        lines = "Date: " + httpDate(now) + "\r\nServer: Quillon/" QUILLON_VERSION "\r\n";
    }
    return lines;
}

#include "classic/pages/ShortDates.h"

#include "classic/pages/Markup.h"

#include <QDate>
#include <QTime>

#include <ctime>

namespace {

constexpr qint64 msecsPerSecond = 1000;

/// Rounds down, also before 1970.
std::time_t wholeSeconds(qint64 msecs)
{
    const qint64 seconds = msecs / msecsPerSecond;
    return msecs % msecsPerSecond < 0 ? seconds - 1 : seconds;
}

} // namespace

QByteArray ShortDates::text(qint64 modified)
{
    const std::time_t seconds = wholeSeconds(modified);
    std::tm local = {};
    if (!::localtime_r(&seconds, &local))
        return {};

    QByteArray &date = dates[(qint64(local.tm_year) * 12 + local.tm_mon) * 31 + local.tm_mday];
    if (date.isNull()) {
        const QDate day(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
        date = toAscii(locale.toString(day, QLocale::ShortFormat));
    }
    QByteArray &time = times[(local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec];
    if (time.isNull()) {
        const QTime hour(local.tm_hour, local.tm_min, qMin(local.tm_sec, 59));
        time = toAscii(locale.toString(hour, QLocale::ShortFormat));
    }
    return date + ' ' + time;
}

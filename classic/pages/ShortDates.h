#pragma once

#include <QByteArray>
#include <QHash>
#include <QLocale>

/// Dates and times in the short form of the default locale, in local time, as ASCII.
/// Remembers its pieces, since the entries of a page share many; lives while the page is made.
class ShortDates
{
public:
    /// `modified` in milliseconds since 1970-01-01 UTC.
    QByteArray text(qint64 modified);

private:
    QLocale locale;
    QHash<qint64, QByteArray> dates; ///< by year, month and day
    QHash<int, QByteArray> times; ///< by second of the day
};

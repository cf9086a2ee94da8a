#include "server/HttpDate.h"

#include <QList>

#include <algorithm>
#include <array>
#include <ctime>

namespace {

constexpr std::array<const char *, 7> days{ "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
constexpr std::array<const char *, 12> months{ "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };
constexpr int yearBase = 1900;
constexpr int newCentury = 70; ///< a year of two digits below it lies after 1999

constexpr int nameSize = 3;
constexpr qint64 lastSecond = 253402300799; ///< of the year 9999
constexpr auto pattern = "Ddd, 00 Mmm 0000 00:00:00 GMT";
constexpr int dateSize = 29;

/// Two digits.
void putNumber(char *at, int number)
{
    at[0] = char('0' + number / 10);
    at[1] = char('0' + number % 10);
}

std::optional<int> numberBetween(const QByteArray &text, int least, int most)
{
    bool good = false;
    const int number = text.toInt(&good);
    if (!good || number < least || number > most)
        return {};
    return number;
}

std::optional<int> monthOf(const QByteArray &text)
{
    const auto found = std::find(months.begin(), months.end(), text);
    if (found == months.end())
        return {};
    return int(found - months.begin());
}

std::optional<int> yearOf(const QByteArray &text)
{
    const std::optional<int> year = numberBetween(text, 0, 9999);
    if (!year || text.size() != 2)
        return year;
    return *year + (*year < newCentury ? 2000 : 1900);
}

std::optional<qint64> secondsOf(const std::optional<int> &day, const std::optional<int> &month,
                                const std::optional<int> &year, const QByteArray &clock)
{
    const QList<QByteArray> parts = clock.split(':');
    if (!day || !month || !year || parts.size() != 3)
        return {};
    const std::optional<int> hour = numberBetween(parts[0], 0, 23);
    const std::optional<int> minute = numberBetween(parts[1], 0, 59);
    const std::optional<int> second = numberBetween(parts[2], 0, 60);
    if (!hour || !minute || !second)
        return {};
    std::tm time = {};
    time.tm_year = *year - yearBase;
    time.tm_mon = *month;
    time.tm_mday = *day;
    time.tm_hour = *hour;
    time.tm_min = *minute;
    time.tm_sec = *second;
    return ::timegm(&time);
}

} // namespace

QByteArray httpDate(qint64 secondsSinceEpoch)
{
    // No other years have four digits.
    const auto seconds = std::time_t(std::clamp<qint64>(secondsSinceEpoch, 0, lastSecond));
    std::tm time = {};
    ::gmtime_r(&seconds, &time);
    std::array<char, dateSize> text;
    std::copy_n(pattern, dateSize, text.data());
    char *at = text.data();
    std::copy_n(days[std::size_t(time.tm_wday)], nameSize, at);
    putNumber(at + 5, time.tm_mday);
    std::copy_n(months[std::size_t(time.tm_mon)], nameSize, at + 8);
    putNumber(at + 12, (time.tm_year + yearBase) / 100);
    putNumber(at + 14, (time.tm_year + yearBase) % 100);
    putNumber(at + 17, time.tm_hour);
    putNumber(at + 20, time.tm_min);
    putNumber(at + 23, time.tm_sec);
    return { text.data(), dateSize };
}

std::optional<qint64> parseHttpDate(const QByteArray &text)
{
    const QList<QByteArray> words = text.simplified().split(' ');
    // "Sun, 06 Nov 1994 08:49:37 GMT"
    if (words.size() == 6 && words[5] == "GMT")
        return secondsOf(numberBetween(words[1], 1, 31), monthOf(words[2]), yearOf(words[3]),
                         words[4]);
    // "Sun Nov  6 08:49:37 1994"
    if (words.size() == 5)
        return secondsOf(numberBetween(words[2], 1, 31), monthOf(words[1]), yearOf(words[4]),
                         words[3]);
    // "Sunday, 06-Nov-94 08:49:37 GMT"
    const QList<QByteArray> date = words.value(1).split('-');
    if (words.size() != 4 || words[3] != "GMT" || date.size() != 3)
        return {};
    return secondsOf(numberBetween(date[0], 1, 31), monthOf(date[1]), yearOf(date[2]), words[2]);
}

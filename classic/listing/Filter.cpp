#include "classic/listing/Filter.h"

#include "files/Entry.h"

#include <QDateTime>
#include <QUrlQuery>

#include <algorithm>
#include <limits>

namespace {

/// What the client rounds a point in time down to. It knows no whole day.
enum TimeUnit { WholeSecond = 0, WholeMinute = 1, WholeHour = 2, MonthStart = 3, YearStart = 4 };

QString item(const QUrlQuery &query, const char *key)
{
    return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded);
}

/// The comparison sign in `text`; 0, which compares for equality, when there is none.
char comparison(const QString &text)
{
    return text.isEmpty() ? '\0' : text.at(0).toLatin1();
}

qint32 sizeLimit(const QString &text)
{
    bool valid = false;
    const int size = text.toInt(&valid);
    return valid ? size : -1;
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Reads "yyyyMMddHH" and minutes of one or two digits, local time; 0 for anything else.
quint32 timeLimit(const QString &text)
{
    const bool readable = (text.size() == 11 || text.size() == 12)
        && std::all_of(text.cbegin(), text.cend(), isDigit);
    const QDate date(text.left(4).toInt(), text.mid(4, 2).toInt(), text.mid(6, 2).toInt());
    const QTime time(text.mid(8, 2).toInt(), text.mid(10).toInt());
    if (!readable || !date.isValid() || !time.isValid())
        return 0;
    return clientTime(QDateTime(date, time).toMSecsSinceEpoch());
}

/// The set that begins with the bracket at `pos`, which moves behind it. A set that isn't closed
/// stays so, and the expression around it doesn't compile.
QString takeSet(const QString &wildcard, int &pos)
{
    int start = pos + 1;
    if (wildcard.mid(start, 1) == QLatin1String("^"))
        ++start;
    // Right behind its opening, "]" is a member of the set.
    const int end = int(wildcard.indexOf(QLatin1Char(']'), start + 1));
    QString members = wildcard.mid(start, end < 0 ? -1 : end - start);
    members.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    members.replace(QLatin1Char('['), QLatin1String("\\["));

    const QString opening = wildcard.mid(pos, start - pos);
    pos = end < 0 ? int(wildcard.size()) : end + 1;
    return opening + members + QLatin1String(end < 0 ? "" : "]");
}

QString takePlain(const QString &wildcard, int &pos)
{
    static const QString special = QStringLiteral("\\^$.|+(){}");
    const QChar c = wildcard.at(pos++);
    if (c == QLatin1Char('?'))
        return QStringLiteral(".");
    return special.contains(c) ? QLatin1Char('\\') + c : QString(c);
}

/// A regular expression that finds `wildcard` ("*", "?", "[...]") anywhere in a name. Each piece
/// between two stars is taken at its first place for good, which is enough and keeps a pattern of
/// many stars from trying all combinations.
QString fromWildcard(const QString &wildcard)
{
    const QString nextPiece = QStringLiteral("(?>.*?");
    QString expression = QLatin1String("\\A") + nextPiece;
    int pos = 0;
    while (pos < wildcard.size()) {
        const QChar c = wildcard.at(pos);
        if (c == QLatin1Char('[')) {
            expression += takeSet(wildcard, pos);
        } else if (c == QLatin1Char('*')) {
            expression += QLatin1Char(')') + nextPiece;
            ++pos;
        } else {
            expression += takePlain(wildcard, pos);
        }
    }
    return expression + QLatin1Char(')');
}

QRegularExpression compile(const QString &wildcard, bool caseSensitive)
{
    QRegularExpression::PatternOptions options = QRegularExpression::DotMatchesEverythingOption;
    if (!caseSensitive)
        options |= QRegularExpression::CaseInsensitiveOption;
    return QRegularExpression(fromWildcard(wildcard), options);
}

} // namespace

quint32 clientTime(qint64 milliseconds)
{
    constexpr auto largest = std::numeric_limits<quint32>::max();
    const qint64 seconds = milliseconds / 1000;
    return seconds < 0 || seconds > largest ? largest : quint32(seconds);
}

void Filter::init(const QUrlQuery &query)
{
    *this = Filter();
    recursive = !item(query, "r").isEmpty();
    size1 = sizeLimit(item(query, "s1"));
    size1Op = comparison(item(query, "s1o"));
    size2 = sizeLimit(item(query, "s2"));
    size2Op = comparison(item(query, "s2o"));
    time = timeLimit(item(query, "t"));
    timeOp = comparison(item(query, "to"));
    timeUnit = item(query, "tu").toInt();

    const QString wildcard = item(query, "p");
    hasPattern = !wildcard.isEmpty();
    pattern = compile(wildcard, !item(query, "s").isEmpty());
}

bool Filter::accept(const QString &name, const EntryFacts &facts) const
{
    return facts.folder
        || (acceptSize(facts.size) && acceptName(name) && acceptTime(facts.modified()));
}

bool Filter::accept(int op, qint64 limit, qint64 value)
{
    if (op == '<')
        return value < limit;
    if (op == '>')
        return value > limit;
    return value == limit;
}

bool Filter::acceptSize(qint64 bytes) const
{
    // Clients hold sizes in 32 bits, so a file beyond 2 GiB compares as they see it.
    const auto size = qint32(bytes);
    return (size1 < 0 || accept(size1Op, size1, size))
        && (size2 < 0 || accept(size2Op, size2, size));
}

bool Filter::acceptName(const QString &name) const
{
    return !hasPattern || (pattern.isValid() && pattern.match(name).hasMatch());
}

bool Filter::acceptTime(qint64 milliseconds) const
{
    if (time == 0)
        return true;
    if (timeOp != '=')
        return accept(timeOp, time, clientTime(milliseconds));
    QDateTime modified = QDateTime::fromMSecsSinceEpoch(milliseconds);
    setDate(modified);
    return accept(timeOp, time, clientTime(modified.toMSecsSinceEpoch()));
}

void Filter::setDate(QDateTime &t) const
{
    const QDate date = t.date();
    const QTime clock = t.time();
    switch (timeUnit) {
    case WholeSecond:
        t.setTime(QTime(clock.hour(), clock.minute(), clock.second()));
        break;
    case WholeMinute:
        t.setTime(QTime(clock.hour(), clock.minute()));
        break;
    case WholeHour:
        t.setTime(QTime(clock.hour(), 0));
        break;
    case MonthStart:
        t = QDateTime(QDate(date.year(), date.month(), 1), QTime(0, 0));
        break;
    case YearStart:
        t = QDateTime(QDate(date.year(), 1, 1), QTime(0, 0));
        break;
    default: // a unit that this system doesn't know
        break;
    }
}

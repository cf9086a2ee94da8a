#include "files/ZipRecords.h"

#include <QString>

#include <algorithm>
#include <ctime>
#include <limits>

namespace {

constexpr quint32 localSignature = 0x04034b50;
constexpr quint32 descriptorSignature = 0x08074b50;
constexpr quint32 centralSignature = 0x02014b50;
constexpr quint32 endSignature = 0x06054b50;
constexpr quint32 wideEndSignature = 0x06064b50;
constexpr quint32 locatorSignature = 0x07064b50;

constexpr quint64 plainVersion = 20; ///< knows folders
constexpr quint64 wideVersion = 45; ///< knows ZIP64
constexpr quint64 madeByUnix = 3 << 8;
constexpr quint64 sumFollows = 1 << 3;
constexpr quint64 nameIsUtf8 = 1 << 11;
constexpr quint64 wideExtra = 0x0001;
constexpr quint64 timeExtra = 0x5455;
constexpr quint64 hasModified = 1;
constexpr auto wideBackslash = "\xef\xbc\xbc"; ///< the letter U+FF3C
constexpr quint64 dosFolder = 0x10;
constexpr quint64 wideEndRest = 44; ///< bytes behind its own length

// These say that the number stands elsewhere.
constexpr qint64 most16 = 0xffff;
constexpr qint64 most32 = 0xffffffff;

/// Numbers one after another, the lowest byte first.
class Record
{
public:
    Record &add(int bytes, quint64 number)
    {
        for (int i = 0; i < bytes; ++i)
            text += char((number >> (8 * i)) & 0xff);
        return *this;
    }
    Record &add(const QByteArray &bytes)
    {
        text += bytes;
        return *this;
    }

    QByteArray text;
};

bool isWide(const ZipEntry &entry)
{
    return entry.size() >= most32;
}

quint64 narrow(qint64 number, qint64 most)
{
    return quint64(std::min(number, most));
}

/// A "\" is a "/" to some who unpack: what is one name here must not lead elsewhere there.
QByteArray nameOf(QByteArray path)
{
    return path.replace('\\', wideBackslash);
}

quint64 flagsOf(const ZipEntry &entry, const QByteArray &name)
{
    const bool isText = QString::fromUtf8(name).toUtf8() == name;
    return (entry.size() > 0 ? sumFollows : 0) | (isText ? nameIsUtf8 : 0);
}

/// Date and time as DOS has them, in 32 bits: local ones from 1980 on, of two seconds each.
quint64 dosTime(qint64 seconds)
{
    const std::time_t time = seconds;
    std::tm parts = {};
    constexpr int firstYear = 80;
    constexpr int lastYear = 207;
    if (!::localtime_r(&time, &parts) || parts.tm_year < firstYear || parts.tm_year > lastYear)
        return (1 << 21) | (1 << 16); // 1980-01-01
    return quint64(parts.tm_year - firstYear) << 25 | quint64(parts.tm_mon + 1) << 21
        | quint64(parts.tm_mday) << 16 | quint64(parts.tm_hour) << 11 | quint64(parts.tm_min) << 5
        | quint64(parts.tm_sec / 2);
}

/// UTC, where 32 bits hold it.
QByteArray timeField(qint64 seconds)
{
    if (seconds != qint32(seconds))
        return {};
    return Record().add(2, timeExtra).add(2, 5).add(1, hasModified).add(4, quint64(seconds)).text;
}

/// Executables stay such; more would be nobody's business, and keep others from their own copies.
quint64 attributesOf(const EntryFacts &facts)
{
    if (facts.folder)
        return quint64(S_IFDIR | 0755) << 16 | dosFolder;
    return quint64(S_IFREG | ((facts.mode & S_IXUSR) != 0 ? 0755 : 0644)) << 16;
}

/// What local and central records have in common.
void addCommon(Record &record, const ZipEntry &entry, const QByteArray &name, bool wide)
{
    record.add(2, wide ? wideVersion : plainVersion)
        .add(2, flagsOf(entry, name))
        .add(2, 0) // stored
        .add(4, dosTime(entry.facts.seconds));
}

} // namespace

QByteArray zipLocalRecord(const ZipEntry &entry, const QByteArray &path)
{
    const QByteArray name = nameOf(path);
    // Tells that the descriptor has wide sizes; those here are left to it.
    QByteArray extra = timeField(entry.facts.seconds);
    if (isWide(entry))
        extra += Record().add(2, wideExtra).add(2, 16).add(8, 0).add(8, 0).text;
    const quint64 size = isWide(entry) ? quint64(most32) : 0;
    Record record;
    record.add(4, localSignature);
    addCommon(record, entry, name, isWide(entry));
    record.add(4, 0).add(4, size).add(4, size);
    record.add(2, quint64(name.size())).add(2, quint64(extra.size())).add(name).add(extra);
    return record.text;
}

QByteArray zipDescriptor(const ZipEntry &entry, quint32 sum)
{
    if (entry.size() == 0)
        return {};
    const int bytes = isWide(entry) ? 8 : 4;
    const auto size = quint64(entry.size());
    return Record().add(4, descriptorSignature).add(4, sum).add(bytes, size).add(bytes, size).text;
}

QByteArray zipCentralRecord(const ZipEntry &entry, const QByteArray &path, quint32 sum)
{
    const QByteArray name = nameOf(path);
    const bool isFar = entry.offset >= most32;
    Record numbers;
    if (isWide(entry))
        numbers.add(8, quint64(entry.size())).add(8, quint64(entry.size()));
    if (isFar)
        numbers.add(8, quint64(entry.offset));
    QByteArray extra = timeField(entry.facts.seconds);
    if (!numbers.text.isEmpty())
        extra +=
            Record().add(2, wideExtra).add(2, quint64(numbers.text.size())).add(numbers.text).text;
    const quint64 size = narrow(entry.size(), most32);
    Record record;
    record.add(4, centralSignature).add(2, madeByUnix | wideVersion);
    addCommon(record, entry, name, isWide(entry) || isFar);
    record.add(4, sum).add(4, size).add(4, size);
    record.add(2, quint64(name.size())).add(2, quint64(extra.size()));
    record.add(2, 0).add(2, 0).add(2, 0); // no comment, first disk, no text
    record.add(4, attributesOf(entry.facts)).add(4, narrow(entry.offset, most32));
    return record.add(name).add(extra).text;
}

QByteArray zipEnd(qint64 entries, qint64 offset, qint64 size)
{
    Record record;
    if (entries >= most16 || offset >= most32 || size >= most32) {
        record.add(4, wideEndSignature).add(8, wideEndRest);
        record.add(2, madeByUnix | wideVersion).add(2, wideVersion).add(4, 0).add(4, 0);
        record.add(8, quint64(entries)).add(8, quint64(entries));
        record.add(8, quint64(size)).add(8, quint64(offset));
        record.add(4, locatorSignature).add(4, 0).add(8, quint64(offset + size)).add(4, 1);
    }
    const quint64 count = narrow(entries, most16);
    record.add(4, endSignature).add(2, 0).add(2, 0).add(2, count).add(2, count);
    record.add(4, narrow(size, most32)).add(4, narrow(offset, most32)).add(2, 0);
    return record.text;
}

#include "standard/http/ContentType.h"

#include <QHash>
#include <QMimeDatabase>
#include <QString>

#include <algorithm>
#include <array>

#include <unistd.h>

namespace standard {

namespace {

constexpr std::size_t textSample = 4096; ///< bytes
constexpr int maxKnown = 1000; ///< endings and names
constexpr auto packedEnding = ".tar"; ///< goes with the one behind it
constexpr int longestCharacter = 4; ///< bytes of one in UTF-8

constexpr std::array<const char *, 5> shownTypes{
    "image/", "audio/", "video/", "text/plain", "application/pdf",
};

// All that may stand in an extended value (RFC 8187, section 3.2.1), beside letters and digits.
constexpr auto literalInValue = "!#$&+-.^_`|~";

bool isText(const QByteArray &type)
{
    return type.startsWith("text/");
}

/// How many bytes a character has that begins so; 0 when none does.
int characterSize(unsigned char c)
{
    if (c < 0x80)
        return 1;
    if (c >= 0xc2 && c < 0xe0)
        return 2;
    if (c >= 0xe0 && c < 0xf0)
        return 3;
    return c >= 0xf0 && c < 0xf5 ? longestCharacter : 0;
}

/// A character may be cut off at the end.
bool isUtf8(const QByteArray &text)
{
    for (int at = 0; at < text.size();) {
        const int size = characterSize(static_cast<unsigned char>(text[at]));
        if (size == 0)
            return false;
        const int end = std::min(at + size, int(text.size()));
        for (int next = at + 1; next < end; ++next) {
            if ((static_cast<unsigned char>(text[next]) & 0xc0) != 0x80)
                return false;
        }
        at += size;
    }
    return true;
}

/// Whether what an open file begins with is.
bool holdsUtf8(int descriptor)
{
    std::array<char, textSample> sample;
    const ssize_t size = ::pread(descriptor, sample.data(), sample.size(), 0);
    return size >= 0 && isUtf8(QByteArray::fromRawData(sample.data(), int(size)));
}

bool isPlain(char c)
{
    return c >= ' ' && c < '\x7f' && c != '"' && c != '\\' && c != '%';
}

/// What a name's type depends on: the ending, or the whole name when it has none.
QByteArray decisivePart(const QByteArray &fileName)
{
    const QByteArray name = fileName.toLower();
    const int dot = int(name.lastIndexOf('.'));
    const auto packed = int(qstrlen(packedEnding));
    const bool isPacked = dot >= packed && name.mid(dot - packed, packed) == packedEnding;
    return name.mid(qMax(0, isPacked ? dot - packed : dot));
}

QByteArray lookUp(const QByteArray &ending)
{
    static const QMimeDatabase types;
    const QString name = QString::fromUtf8(ending.startsWith('.') ? 'x' + ending : ending);
    return types.mimeTypeForFile(name, QMimeDatabase::MatchExtension).name().toLatin1();
}

} // namespace

QByteArray contentType(const QByteArray &fileName)
{
    // A look into the database takes longer than all the rest of a small reply.
    thread_local QHash<QByteArray, QByteArray> known;
    const QByteArray key = decisivePart(fileName);
    const auto found = known.constFind(key);
    if (found != known.constEnd())
        return *found;
    if (known.size() >= maxKnown)
        known.clear();
    return *known.insert(key, lookUp(key));
}

QByteArray contentType(const QByteArray &fileName, int descriptor)
{
    const QByteArray type = contentType(fileName);
    return isText(type) && holdsUtf8(descriptor) ? type + "; charset=utf-8" : type;
}

QByteArray disposition(const QByteArray &fileName, const QByteArray &type)
{
    const bool isShown = std::any_of(shownTypes.begin(), shownTypes.end(),
                                     [&type](const char *shown) { return type.startsWith(shown); });
    QByteArray value = isShown ? "inline; filename=\"" : "attachment; filename=\"";
    if (std::all_of(fileName.begin(), fileName.end(), isPlain))
        return value + fileName + '"';
    QByteArray plain = fileName;
    std::replace_if(
        plain.begin(), plain.end(), [](char c) { return !isPlain(c); }, '_');
    value += plain + '"';
    // What isn't UTF-8 can't be told by that name (RFC 8187, section 3.2.3).
    if (QString::fromUtf8(fileName).toUtf8() == fileName)
        value += "; filename*=UTF-8''" + fileName.toPercentEncoding(literalInValue);
    return value;
}

} // namespace standard

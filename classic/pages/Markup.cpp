#include "classic/pages/Markup.h"

#include "classic/http/RequestTarget.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr auto background = "sand-light.jpg";
constexpr auto pathMarks = "-._~!$&'()*+,;=:@/[]";

constexpr bool isPlain(char c)
{
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return letter || (c >= '0' && c <= '9');
}

/// Whether a byte may stand in a path as it is.
std::array<bool, 256> pathBytes()
{
    std::array<bool, 256> allowed = {};
    for (int code = 1; code < 128; ++code) {
        const char c = char(code);
        allowed.at(std::size_t(code)) = isPlain(c) || std::strchr(pathMarks, c) != nullptr;
    }
    return allowed;
}

const char *entity(char c)
{
    switch (c) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    default:
        return nullptr;
    }
}

struct SizeUnit
{
    int shift;
    const char *name;
};

constexpr std::array<SizeUnit, 3> sizeUnits{ { { 30, "GB" }, { 20, "MB" }, { 10, "KB" } } };

} // namespace

void addEscaped(QByteArray *out, const QByteArray &utf8)
{
    if (std::none_of(utf8.begin(), utf8.end(), [](char c) { return entity(c) != nullptr; })) {
        out->append(utf8);
        return;
    }
    for (const char c : utf8) {
        if (const char *name = entity(c))
            out->append(name);
        else
            out->append(c);
    }
}

void addEncodedPath(QByteArray *out, const QByteArray &utf8Path)
{
    static const std::array<bool, 256> allowed = pathBytes();
    constexpr auto digits = "0123456789ABCDEF";
    for (const char c : utf8Path) {
        const auto code = static_cast<unsigned char>(c);
        if (allowed[code]) {
            out->append(c);
            continue;
        }
        const std::array<char, 3> encoded{ '%', digits[code >> 4U], digits[code & 15U] };
        out->append(encoded.data(), int(encoded.size()));
    }
}

QByteArray withOneSlash(const QByteArray &path)
{
    int start = 0;
    while (start < path.size() && path.at(start) == '/')
        ++start;
    return '/' + path.mid(start);
}

void addLocalLink(QByteArray *out, const QByteArray &utf8Path)
{
    const QByteArray path = withOneSlash(utf8Path);
    // Browsers read a backslash as a slash and overlook control characters.
    const char second = path.size() > 1 ? path.at(1) : 'a';
    const bool misread = second == '\\' || (second >= 0 && second < ' ');
    if (misread)
        addEncodedPath(out, path);
    else
        addEscaped(out, path);
}

void addSize(QByteArray *out, qint64 bytes)
{
    for (const SizeUnit &unit : sizeUnits) {
        if (bytes > (qint64(1) << unit.shift)) {
            out->append(QByteArray::number(bytes >> unit.shift)).append(unit.name);
            return;
        }
    }
    out->append(QByteArray::number(bytes)).append("Byte");
}

QByteArray toAscii(const QString &text)
{
    QByteArray ascii;
    ascii.reserve(int(text.size()));
    for (const QChar c : text) {
        // Some locales put narrow blanks into times.
        const char other = c.isSpace() ? ' ' : '?';
        ascii.append(c.unicode() < 0x80 ? char(c.unicode()) : other);
    }
    return ascii;
}

void addHead(QByteArray *out)
{
    out->append("<html><head><title>Quillon</title>");
}

void addBody(QByteArray *out, bool picture)
{
    if (picture)
        out->append(R"(<body background=")").append(iconUrl).append(background).append(R"(">)");
    else
        out->append("<body>");
}

void addForm(QByteArray *out, const char *action, const char *name)
{
    out->append(R"(<form method="post")");
    if (name)
        out->append(R"( name=")").append(name).append('"');
    out->append(R"(><input type="hidden" name="a" value=")").append(action).append(R"(">)");
}

void addOption(QByteArray *out, const char *label, const char *value, bool selected)
{
    out->append(R"(<option value=")").append(value).append('"');
    if (selected)
        out->append(" SELECTED");
    out->append(">").append(toAscii(QCoreApplication::translate("BrowserPages", label)));
    out->append("</option>");
}

void addInputP(QByteArray *out, int itemsPerPage)
{
    addForm(out, "c");
    out->append(R"(<td style="white-space: nowrap"><input type="submit"value=")");
    out->append("Set Item/Page").append(R"(:">)");
    out->append(R"(<input type="text" size="2" name="cv" value=")");
    out->append(QByteArray::number(itemsPerPage)).append(R"("></td></form>)");
}

void addParam(QByteArray *out, const char *name, const QByteArray &value)
{
    out->append("<param name=").append(name).append(R"( value=")");
    addEscaped(out, value);
    out->append(R"(">)");
}

void addArg(QByteArray *out, const char *name, const QByteArray &value)
{
    out->append("<argument>").append(name).append("=");
    addEscaped(out, value);
    out->append("</argument>");
}

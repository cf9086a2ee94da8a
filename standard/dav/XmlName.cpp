#include "standard/dav/XmlName.h"

namespace standard {

namespace {

/// XML 1.0, section 2.2, for one unit of UTF-16; `next` follows it.
bool isAllowed(QChar c, QChar next)
{
    if (c.isHighSurrogate())
        return next.isLowSurrogate();
    const ushort code = c.unicode();
    return (code >= 0x20 || code == '\t' || code == '\n' || code == '\r') && code < 0xfffe;
}

/// Null for what stands for itself. Blanks other than ' ' would not survive in an attribute, nor CR
/// anywhere.
const char *reference(QChar c)
{
    switch (c.unicode()) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\r':
        return "&#13;";
    case '\n':
        return "&#10;";
    case '\t':
        return "&#9;";
    default:
        return nullptr;
    }
}

/// How many units stand at `at` for one character that XML can hold; 0 when it can't.
int allowedUnits(const QString &text, int at)
{
    const QChar next = at + 1 < text.size() ? text.at(at + 1) : QChar();
    if (text.at(at).isLowSurrogate() || !isAllowed(text.at(at), next))
        return 0;
    return text.at(at).isHighSurrogate() ? 2 : 1;
}

} // namespace

QByteArray xmlText(const QString &text)
{
    QString escaped;
    escaped.reserve(text.size());
    int copied = 0; // what stands for itself is taken in runs
    const auto copyUntil = [&](int end) {
        escaped.append(text.constData() + copied, end - copied);
        copied = end + 1;
    };
    for (int at = 0; at < text.size();) {
        const int units = allowedUnits(text, at);
        const char *instead = reference(text.at(at));
        if (instead || units == 0)
            copyUntil(at);
        if (instead)
            escaped += QLatin1String(instead);
        at += qMax(units, 1);
    }
    copyUntil(int(text.size()));
    return escaped.toUtf8();
}

bool isXmlText(const QString &text)
{
    for (int at = 0; at < text.size();) {
        const int units = allowedUnits(text, at);
        if (units == 0)
            return false;
        at += units;
    }
    return true;
}

QByteArray emptyElement(const XmlName &name)
{
    if (name.space == QLatin1String(davSpace))
        return "<D:" + name.local.toUtf8() + "/>";
    if (name.space.isEmpty())
        return '<' + name.local.toUtf8() + "/>";
    return '<' + name.local.toUtf8() + " xmlns=\"" + xmlText(name.space) + "\"/>";
}

} // namespace standard

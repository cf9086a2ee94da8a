#include "classic/http/RequestTarget.h"

#include <QStringList>

namespace {

/// Offset of the path in "scheme://host/path", or -1 when `target` is no absolute URL.
int absoluteFormPath(const QByteArray &target)
{
    const auto separator = target.indexOf("://");
    if (separator < 1)
        return -1;
    for (int i = 0; i < separator; ++i) {
        const char c = target.at(i);
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
        if (!letter && (i == 0 || !other))
            return -1;
    }
    auto end = separator + 3;
    while (end < target.size() && target.at(end) != '/' && target.at(end) != '?')
        ++end;
    return int(end);
}

RequestTarget::Form formOf(const QByteArray &path)
{
    if (path.isEmpty())
        return RequestTarget::Form::Empty;
    if (path == "*")
        return RequestTarget::Form::Asterisk;
    return path.startsWith('/') ? RequestTarget::Form::Path : RequestTarget::Form::Malformed;
}

/// All of it: the toolkit's shorter call stops at a NUL.
QString fromUtf8(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

} // namespace

RequestTarget parseTarget(const QByteArray &encoded)
{
    QByteArray rest = encoded.mid(0, int(encoded.indexOf('#')));
    if (const int start = absoluteFormPath(rest); start >= 0)
        rest = rest.mid(start);

    RequestTarget target;
    const auto mark = rest.indexOf('?');
    if (mark >= 0)
        target.query = rest.mid(int(mark) + 1);
    const QByteArray path = rest.mid(0, int(mark));
    target.form = formOf(path);
    target.path = fromUtf8(QByteArray::fromPercentEncoding(path));
    return target;
}

bool climbsOut(const QString &path)
{
    if (!path.contains(QLatin1String("..")))
        return false;

    int depth = 0;
    const QStringList segments = path.split(QLatin1Char('/'));
    for (const QString &segment : segments) {
        if (segment.isEmpty() || segment == QLatin1String("."))
            continue;
        depth += segment == QLatin1String("..") ? -1 : 1;
        if (depth < 0)
            return true;
    }
    return false;
}

std::optional<QString> restBehind(const char *start, const QString &path)
{
    const QLatin1String latin1(start);
    if (!path.startsWith(latin1))
        return {};
    return path.mid(int(latin1.size()));
}

#include "classic/http/Cookies.h"

#include <QList>

#include <algorithm>

void Cookies::set(const QByteArray &value)
{
    all.clear();
    const QList<QByteArray> pieces = value.split(';');
    for (const QByteArray &piece : pieces)
        add(piece);
}

void Cookies::add(const QByteArray &piece)
{
    const QByteArray pair = piece.trimmed();
    const auto equals = pair.indexOf('=');
    // The reply repeats them: a line break would begin a header of its own.
    const bool breaksLine = pair.contains('\n') || pair.contains('\r');
    if (equals > 0 && !breaksLine)
        all.push_back({ pair.left(equals), pair.mid(equals + 1) });
}

const Cookies::Cookie *Cookies::find(const char *name) const
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [name](const Cookie &known) { return known.name == name; });
    return found == all.end() ? nullptr : &*found;
}

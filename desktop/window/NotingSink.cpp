#include "desktop/window/NotingSink.h"

#include <utility>

NotingSink::NotingSink(StatusSink *next, Note note)
    : sink(next)
    , tell(std::move(note))
{
}

void NotingSink::newConnection(const QString &peer)
{
    sink->newConnection(peer);
}

void NotingSink::msg(const QString &title, const QString &text)
{
    if (isNoting)
        tell(title + QLatin1String(": ") + text);
    else
        sink->msg(title, text);
}

bool NotingSink::knowsKeyProblems() const
{
    return sink->knowsKeyProblems();
}

bool NotingSink::listens() const
{
    return sink->listens();
}

void NotingSink::told(const Deed &deed)
{
    sink->told(deed);
}

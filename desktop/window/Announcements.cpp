#include "desktop/window/Announcements.h"

#include "config/Profile.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"

#include <utility>

namespace {

/// What others see of the row, or would see; none when it is not to be found.
QStringList factsOf(const ServerRow &row)
{
    const Profile &profile = *row.profile();
    if (!row.isListening() || profile.announced == 0)
        return {};
    const bool hasUser = profile.authMode == AuthBasic && profile.users.size() == 1;
    return { row.url(), profile.announcedName,
             hasUser ? accountName(profile.users.constFirst()) : QString() };
}

} // namespace

Announcements::Announcements(ServerRows *servers, Announce announce)
    : start(std::move(announce))
{
    if (!start)
        return;
    for (ServerRow *row : servers->all())
        follow(row);
    connect(servers, &ServerRows::rowAdded, this, &Announcements::follow);
}

void Announcements::follow(ServerRow *row)
{
    for (const auto change : { &ServerRow::reachChanged, &ServerRow::changed })
        connect(row, change, this, [this, row] { update(row); });
    connect(row, &QObject::destroyed, this, [this, row] { announced.erase(row); });
    update(row);
}

/// Begins anew when others are to see something else.
void Announcements::update(ServerRow *row)
{
    const QStringList facts = factsOf(*row);
    const auto before = announced.find(row);
    if (before != announced.end() && before->second.facts == facts)
        return;
    announced.erase(row);
    if (!facts.isEmpty())
        announced[row] = { facts, start(*row->server(), *row->profile()) };
}

#include "desktop/window/Announcements.h"

#include "config/Profile.h"
#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"

#include <utility>

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
    connect(row, &ServerRow::reachChanged, this, [this, row] { update(row); });
    connect(row, &QObject::destroyed, this, [this, row] { announced.erase(row); });
    update(row);
}

/// Begins anew with each change: port, encryption or name may be others.
void Announcements::update(ServerRow *row)
{
    announced.erase(row);
    if (row->isListening() && row->profile()->announced != 0)
        announced[row] = start(*row->server(), *row->profile());
}

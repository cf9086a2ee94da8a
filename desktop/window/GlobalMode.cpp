#include "desktop/window/GlobalMode.h"

#include "config/Profiles.h"

#include <utility>

GlobalMode::GlobalMode(const Profiles *choice)
    : profiles(choice)
    , noticed(globalNow())
{
}

bool GlobalMode::isExpert() const
{
    return profiles->global()->expertMode;
}

void GlobalMode::setExpert(bool on)
{
    if (isExpert() == on)
        return;
    profiles->global()->amend([on](Profile &global) { global.expertMode = on; });
    look();
}

GlobalMode::Noticed GlobalMode::globalNow() const
{
    const Profile *global = profiles->global();
    return { global->dnsEnabled, global->dnsUser, global->dnsPassword, global->expertMode };
}

void GlobalMode::look()
{
    const Noticed before = std::exchange(noticed, globalNow());
    if (noticed == before)
        return;
    Q_EMIT modeChanged();
    if (profiles->global()->usesDns())
        Q_EMIT dnsWanted();
}

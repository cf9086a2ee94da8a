#include "server/Access.h"

#include "config/Profile.h"
#include "files/Path.h"

Access Access::of(const ProfileValues &profile, const QByteArray &account)
{
    Access access;
    access.rights = profile.rightsOfEveryone();
    // With a mere password any name may be given: nothing may be owned by it.
    if (profile.authMode != AuthBasic)
        return access;
    access.account = account;
    const auto own = profile.accountRights.constFind(QString::fromUtf8(account));
    if (own == profile.accountRights.constEnd())
        return access;
    access.rights = own->rights.value_or(access.rights);
    access.home = cleanPath(own->home);
    return access;
}

bool Access::isAsSwitched(const ProfileValues &profile) const
{
    return home.isEmpty() && rights == profile.switchedRights();
}

bool Access::may(Rights needed, const QByteArray &path) const
{
    const bool isAtHome = home.isEmpty() || path == home || path.startsWith(home + '/');
    return isAtHome && (rights & needed) == needed;
}

QByteArray Access::inShare(const QByteArray &path) const
{
    return home.isEmpty() || path.isEmpty() ? home + path : home + '/' + path;
}

QByteArray seenFrom(const QByteArray &home, const QByteArray &path)
{
    if (home.isEmpty())
        return path;
    return path.startsWith(home + '/') ? path.mid(home.size() + 1) : QByteArray();
}

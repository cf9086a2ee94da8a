#pragma once

#include "config/Rights.h"

#include <QByteArray>

struct ProfileValues;

/// Who sends a request, what the profile lets them do, and where: the one rule of who may do what.
/// Without a profile, nothing. Paths are relative to the share's root and clean (`cleanPath`).
struct Access
{
    /// Of a visitor who has logged in as `account`; empty for nobody in particular. Only where
    /// there are accounts has one of them a name, rights and a home of its own.
    static Access of(const ProfileValues &profile, const QByteArray &account);

    /// Whether these are the rights of all whom the profile's switches speak of. The classic face
    /// knows no others.
    bool isAsSwitched(const ProfileValues &profile) const;

    /// Whether all of `needed` may be done to what `path` names.
    bool may(Rights needed, const QByteArray &path) const;

    /// What the visitor means by `path`. For who has a home that is the root, so that programs
    /// that begin at "/" find their way, and nothing else has a name.
    QByteArray inShare(const QByteArray &path) const;

    QByteArray account = {};
    Rights rights = {};
    QByteArray home = {}; ///< a path; "" when there is none
    bool inSession = false; ///< logged in by a page, and may log out, see `LoginSessions`
};

/// What a visitor with that home calls `path`; "" for all that isn't below it.
QByteArray seenFrom(const QByteArray &home, const QByteArray &path);

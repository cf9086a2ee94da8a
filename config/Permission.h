#pragma once

struct ProfileValues;

/// What visitors may do, as people say it.
enum class Permission {
    Look,
    LookAndAdd, ///< nothing that is there is taken away
    ChangeEverything,
    AddOnly, ///< an inbox; the standard answers alone know it
    AsSet ///< there is more to say
};

/// What the values allow everyone whatever program they use; `AsSet` where programs differ or
/// accounts have rights of their own.
Permission permissionOf(const ProfileValues &values);

/// Allows exactly that, but nothing for `AsSet`. Only in the mode `auto` may programs that get the
/// standard answers also replace files by `LookAndAdd`, as the switch for uploads lets them.
/// `AddOnly` brings the mode `standard` along.
void permit(Permission wanted, ProfileValues *values);

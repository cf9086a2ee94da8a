#include "config/Permission.h"

#include "config/Profile.h"

#include <algorithm>
#include <array>

namespace {

constexpr qint32 switchedOff = 0; // check states
constexpr qint32 switchedOn = 2;

constexpr Rights lookRights = Right::See | Right::Read;

struct Meaning
{
    Rights rights;
    Permission permission;
};

constexpr std::array meanings{
    Meaning{ lookRights, Permission::Look },
    Meaning{ lookRights | Right::Add, Permission::LookAndAdd },
    Meaning{ lookRights | Right::Add | Right::Change, Permission::LookAndAdd },
    Meaning{ lookRights | changingRights, Permission::ChangeEverything },
    Meaning{ Right::Add, Permission::AddOnly },
};

/// Classic answers keep everything that changes to the switches only where rights are stated, and
/// refuse whoever has other rights.
bool holdForAllPrograms(const ProfileValues &values)
{
    if (values.faceMode == FaceStandard)
        return true;
    return values.rightsOfEveryone() == values.switchedRights()
        && (values.everyone || values.isStrict()
            || (values.enableUpload == switchedOn && values.enableDelete == switchedOn));
}

void setSwitches(qint32 upload, qint32 deleting, ProfileValues *values)
{
    values->enableUpload = upload;
    values->enableDelete = deleting;
}

} // namespace

Permission permissionOf(const ProfileValues &values)
{
    if (!values.accountRights.isEmpty() || !holdForAllPrograms(values))
        return Permission::AsSet;
    const auto *found = std::find_if(meanings.begin(), meanings.end(), [&](const Meaning &each) {
        return each.rights == values.rightsOfEveryone();
    });
    return found == meanings.end() ? Permission::AsSet : found->permission;
}

void permit(Permission wanted, ProfileValues *values)
{
    switch (wanted) {
    case Permission::Look:
        setSwitches(switchedOff, switchedOff, values);
        values->everyone = lookRights;
        break;
    case Permission::LookAndAdd:
        setSwitches(switchedOn, switchedOff, values);
        values->everyone =
            values->faceMode == FaceStandard ? lookRights | Right::Add : values->switchedRights();
        break;
    case Permission::ChangeEverything:
        setSwitches(switchedOn, switchedOn, values);
        values->everyone.reset();
        break;
    case Permission::AddOnly:
        setSwitches(switchedOn, switchedOff, values);
        values->everyone = Right::Add;
        values->faceMode = FaceStandard;
        break;
    case Permission::AsSet:
        break;
    }
}

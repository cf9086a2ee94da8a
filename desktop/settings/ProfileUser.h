#pragma once

#include <QtGlobal>

class Profile;

/// Something that runs with one of the user's profiles and can move to another.
/// The profile chooser only borrows it.
class ProfileUser
{
public:
    ProfileUser() = default;
    virtual ~ProfileUser() = default;

    /// The profile in use.
    virtual Profile *profile() const = 0;

    /// Moves to `profile`, one of the user's.
    virtual void useProfile(Profile *profile) = 0;

private:
    Q_DISABLE_COPY(ProfileUser)
};

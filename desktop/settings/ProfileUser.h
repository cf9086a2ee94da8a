#pragma once

#include <QtGlobal>

class Profile;

/// Something that runs with one profile of `Profile::confList` and can move to another.
/// The profile chooser only borrows it.
class ProfileUser
{
public:
    ProfileUser() = default;
    virtual ~ProfileUser() = default;

    /// The profile in use.
    virtual Profile *profile() const = 0;

    /// Moves to `profile`, which is an element of `Profile::confList`.
    virtual void useProfile(Profile *profile) = 0;

private:
    Q_DISABLE_COPY(ProfileUser)
};

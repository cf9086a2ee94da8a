#pragma once

#include <QtGlobal>

class Configuration;

/// Something that runs with one profile of `Configuration::confList` and can move to another.
/// The profile chooser only borrows it.
class ProfileUser
{
public:
    ProfileUser() = default;
    virtual ~ProfileUser() = default;

    /// The profile in use.
    virtual Configuration *profile() const = 0;

    /// Moves to `profile`, which is an element of `Configuration::confList`.
    virtual void configurationChanged(Configuration *profile) = 0;

private:
    Q_DISABLE_COPY(ProfileUser)
};

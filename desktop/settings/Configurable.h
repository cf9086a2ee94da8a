#pragma once

#include <QtGlobal>

class Profile;

/// An object that reacts when a profile was edited and applied.
/// Whoever opens an editor for a profile names the receiver; the editor only borrows it.
class Configurable
{
public:
    Configurable() = default;
    virtual ~Configurable() = default;

    /// `profile` holds the edited values. It belongs to the caller and may be gone after the call.
    virtual void profileEdited(Profile *profile) = 0;

private:
    Q_DISABLE_COPY(Configurable)
};

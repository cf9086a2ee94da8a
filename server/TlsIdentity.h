#pragma once

#include "net/TlsContext.h"

#include <QString>

#include <memory>
#include <optional>

class Profile;

/// The key and certificate by which a server proves who it is.
struct TlsIdentity
{
    /// What `profile` names. Nothing when both can't be used together; `problem` then says why,
    /// translated.
    static std::optional<TlsIdentity> load(const Profile &profile, QString *problem);

    std::shared_ptr<TlsContext> context; ///< never null
};

#pragma once

#include "app/Sandbox.h"

#include <QString>

class Profile;

/// What is left to a process that does nothing but serve `shared`, a file or folder, with
/// `profile`. Unless that is strict, links lead out of the share and any file may be served: only
/// programs and connections can be taken away then. Otherwise the folder of the previews is made,
/// as there are rules for what exists alone.
SandboxRules serverRules(const QString &shared, const Profile &profile);

#pragma once

#include "files/FileDescriptor.h"

class Profile;
class WebServer;

/// Has `server`, which listens, found in the network under the name that `profile` gives it, by a
/// program of its own. What is announced is withdrawn once the descriptor is closed, also by the
/// end of this process. It is not open when the program can't be started.
FileDescriptor startAnnouncing(const WebServer &server, const Profile &profile);

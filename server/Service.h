#pragma once

#include "config/Directories.h"
#include "files/OpenFiles.h"
#include "files/ShareParts.h"
#include "net/TrafficAccount.h"
#include "server/Face.h"
#include "server/LoginSessions.h"
#include "server/OwnNames.h"
#include "server/SessionTable.h"

#include <QFileInfo>

#include <memory>

class DiskWorker;
class Guesses;
class KeptPreviews;
class ListingCache;
class MemoryBudget;
class MemoryTrim;
class PasswordChecks;
class PeerCount;
class Places;
class Poller;
class Previews;
class Profile;
class Share;
class StatusSink;
class Turns;

/// What all servers of a program have in common. What it points to outlives them.
struct ServerSetup
{
    FaceMaker makeFace;
    StatusSink *sink = nullptr;
    Poller *poller = nullptr;
    MemoryBudget *forms = nullptr; ///< for bodies that are read whole
    MemoryBudget *replies = nullptr; ///< for what they keep to go on, while peers take the rest
    MemoryBudget *archiveMemory = nullptr; ///< for what their records are made from
    DiskWorker *disk = nullptr;
    ListingCache *listings = nullptr;
    MemoryTrim *memory = nullptr;
    Turns *turns = nullptr; ///< of long replies
    Places *copies = nullptr; ///< for what COPY does
    Places *archives = nullptr; ///< for what they are to hold
    PeerCount *peers = nullptr;
    PasswordChecks *passwords = nullptr;
    Guesses *guesses = nullptr; ///< at passwords
    Previews *previews = nullptr; ///< in the lists of the classic face
    KeptPreviews *keptPreviews = nullptr; ///< in the standard face
    Directories directories;
};

/// A text that visitors hand each other, kept in memory alone.
struct ScratchPad
{
    QByteArray text;
    qint64 changed = 0; ///< seconds since 1970-01-01 UTC
};

/// One served item as its connections see it. Owned by its server.
struct Service
{
    const ServerSetup &setup;
    Profile *profile; ///< live: its values may change between two requests
    QFileInfo shared;
    bool singleFile = false;
    std::shared_ptr<const Share> share; ///< of `shared`; null when that can't be opened
    SessionTable sessions;
    TrafficAccount traffic;
    OpenFiles files = {}; ///< of `share`
    std::shared_ptr<const Share> closed = {}; ///< the same as `share`, but no link leads out of it
    OpenFiles closedFiles = {}; ///< of `closed`
    ShareParts parts = {}; ///< of the same, for who has a home
    std::unique_ptr<FaceState> faceState = {}; ///< about `closed`; null until a face needs it
    LastName calledLast = {}; ///< by visitors themselves, not by a proxy
    ScratchPad scratchPad = {};
    LoginSessions logins = {}; ///< by the page of the standard face
};

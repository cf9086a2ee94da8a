#pragma once

#include "files/DiskWorker.h"
#include "files/KeptPreviews.h"
#include "files/ListingCache.h"
#include "files/MemoryBudget.h"
#include "net/Poller.h"
#include "server/Guesses.h"
#include "server/MemoryTrim.h"
#include "server/PasswordChecks.h"
#include "server/PeerCount.h"
#include "server/Places.h"
#include "server/Service.h"
#include "server/Turns.h"

#include <memory>

/// What the servers of a program wait and work with. Made once in `main`; outlives its servers.
class Engine
{
public:
    /// `sink` and `previews` are borrowed and outlive the engine; both may be null.
    Engine(FaceMaker makeFace, const Directories &directories, StatusSink *sink,
           Previews *previews);

    /// For every server of the program.
    std::shared_ptr<const ServerSetup> setup() const { return common; }

private:
    Poller poller;
    MemoryBudget forms;
    // Both outlive the jobs that have parts of them. What is written takes as much again as
    // `replies`, see `Poller`.
    MemoryBudget replies{ qint64(32) << 20 };
    MemoryBudget archiveMemory{ qint64(64) << 20 };
    PeerCount peers;
    Guesses guesses;
    Places copies{ 4, qint64(32) << 20 }; // outlives the jobs that have its passes
    Places archives{ 4, qint64(64) << 20 };
    DiskWorker disk;
    ListingCache listings{ disk };
    MemoryTrim memory{ disk };
    Turns turns{ memory };
    PasswordChecks passwords{ disk };
    std::unique_ptr<KeptPreviews> keptPreviews; ///< null without previews
    std::shared_ptr<const ServerSetup> common;
};

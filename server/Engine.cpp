#include "server/Engine.h"

#include "files/Previews.h"

#include <algorithm>
#include <utility>

#include <sys/resource.h>

namespace {

constexpr qint64 maxForms = qint64(32) * 1024 * 1024; ///< bytes
constexpr rlim_t usualDescriptors = 1024;

/// Leaves descriptors for the files that are served.
int maxConnections()
{
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        limit.rlim_cur = usualDescriptors;
    constexpr rlim_t most = 1'000'000;
    return int(std::min(limit.rlim_cur, most) / 4 * 3);
}

} // namespace

Engine::Engine(FaceMaker makeFace, const Directories &directories, StatusSink *sink,
               Previews *previews)
    : forms(maxForms)
    , peers(maxConnections())
    , guesses(sink)
    , keptPreviews(previews ? std::make_unique<KeptPreviews>(
                       previews->program(), directories.cache + QLatin1String("previews"), disk)
                            : nullptr)
    , common(std::make_shared<ServerSetup>(
          ServerSetup{ std::move(makeFace), sink, &poller, &forms, &replies, &archiveMemory, &disk,
                       &listings, &memory, &turns, &copies, &archives, &peers, &passwords, &guesses,
                       previews, keptPreviews.get(), directories }))
{
    QObject::connect(&memory, &MemoryTrim::roomNeeded, &listings, [this] {
        forms.close();
        listings.dropAll();
    });
    QObject::connect(&memory, &MemoryTrim::shortageOver, &listings, [this] { forms.open(); });
}

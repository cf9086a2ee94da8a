#include "server/Engine.h"

#include <utility>

namespace {

constexpr qint64 maxForms = qint64(32) * 1024 * 1024; ///< bytes

} // namespace

Engine::Engine(FaceMaker makeFace, const Directories &directories, StatusSink *sink,
               Previews *previews)
    : forms(maxForms)
    , common(std::make_shared<ServerSetup>(ServerSetup{ std::move(makeFace), sink, &poller, &forms,
                                                        &disk, &listings, &memory, &turns, &copies,
                                                        previews, directories }))
{
}

#include "server/Engine.h"

#include <utility>

Engine::Engine(FaceMaker makeFace, const Directories &directories, StatusSink *sink,
               Previews *previews)
    : common(std::make_shared<ServerSetup>(
        ServerSetup{ std::move(makeFace), sink, &poller, &disk, &listings, previews, directories }))
{
}

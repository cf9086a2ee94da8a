#pragma once

#include "standard/dav/PropPatchJob.h"
#include "standard/http/Resource.h"

#include <memory>

namespace standard {

/// PROPPATCH: changes properties of one resource, all of those named or none. A client that goes
/// away meanwhile has them changed.
class PropPatch final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
    void bodyReady(const QByteArray &body) override;
    void ended() override { job.reset(); }

private:
    void answer();

    std::shared_ptr<PropPatchJob> job; ///< until the reply is over
};

} // namespace standard

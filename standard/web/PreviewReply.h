#pragma once

#include "files/KeptPreviews.h"
#include "standard/http/Resource.h"

namespace standard {

/// GET and HEAD of a picture's preview, which the query asks for: "preview=320".
class PreviewReply final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
    void ended() override;

    /// Browsers leave so when a page is scrolled on, but who merely sends no more gets its answer.
    void peerStopped() override;

    static constexpr auto parameter = "preview";

private:
    void answer(KeptPreviews::Answer answer, OpenDescriptor preview);
    void send(OpenDescriptor preview);

    Fields fields; ///< of the preview, unchanged or not
};

} // namespace standard

#pragma once

#include "standard/http/Handler.h"

namespace standard {

/// GET and HEAD of the files of the web application, which browsers keep for good: a name stands
/// for one content.
class AppFileReply final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

} // namespace standard

#pragma once

#include "standard/http/Handler.h"

namespace standard {

/// GET and HEAD of what is shared.
class FileReply final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

} // namespace standard

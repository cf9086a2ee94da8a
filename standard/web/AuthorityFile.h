#pragma once

#include "standard/http/Handler.h"

namespace standard {

/// GET and HEAD of what visitors need to come to trust the server, see `authorityReply`.
class AuthorityFile final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

} // namespace standard

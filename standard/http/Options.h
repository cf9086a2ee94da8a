#pragma once

#include "standard/http/Resource.h"

namespace standard {

/// "Allow" with the methods that what the request names answers.
Field allowField(const Exchange &exchange);

/// OPTIONS: what can be done with a file or folder, or with the server.
class Options final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

} // namespace standard

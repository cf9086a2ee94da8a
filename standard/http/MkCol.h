#pragma once

#include "standard/http/Resource.h"

namespace standard {

/// MKCOL: makes a folder.
class MkCol final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;

private:
    bool isAllowed(const QByteArray &path);
};

} // namespace standard

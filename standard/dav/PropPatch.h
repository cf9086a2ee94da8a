#pragma once

#include "standard/dav/PropertyStore.h"
#include "standard/dav/SettableProperties.h"
#include "standard/http/Resource.h"

#include <vector>

namespace standard {

/// PROPPATCH: changes properties of one resource, all of those named or none.
class PropPatch final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
    void bodyReady(const QByteArray &body) override;

private:
    using Changes = std::vector<PropertyChange>;

    void answer(const Changes &changes, const std::vector<Status> &outcomes, bool isFolder);
};

} // namespace standard

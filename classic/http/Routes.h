#pragma once

#include "classic/http/Exchange.h"

#include <memory>
#include <vector>

class Responder;

/// Says who answers a method. The face takes the first route that fits.
struct Route
{
    Request::Method method;
    bool (*applies)(const Request &request); ///< null: every request of the method
    std::unique_ptr<Responder> (*make)(Exchange &exchange);
};

using Routes = std::vector<Route>;

/// The `make` of a route for a responder that needs nothing but the exchange.
template <typename Kind> std::unique_ptr<Responder> makeResponder(Exchange &exchange)
{
    return std::make_unique<Kind>(exchange);
}

/// What is answered without anybody else: GET and POST with plain files.
/// Routes of other folders go in front of these.
Routes fileRoutes();

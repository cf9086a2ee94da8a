#pragma once

#include "standard/http/Method.h"

#include <memory>
#include <vector>

class FileSums;

namespace standard {

class Exchange;
class Guard;
class Handler;
class OpenUploads;
class RemovedEntries;

/// Says who answers a method.
struct Route
{
    Method method;
    std::unique_ptr<Handler> (*make)(Exchange &exchange);
    const char *below = nullptr; ///< the reserved path that it answers for; null: all others
    bool isOpen = false; ///< to who has not logged in
    const char *parameter = nullptr; ///< of the query that it answers for; null: any query
};

/// The `make` of a route for a handler that needs nothing but the exchange.
template <typename Kind> std::unique_ptr<Handler> makeHandler(Exchange &exchange)
{
    return std::make_unique<Kind>(exchange);
}

/// Everything that the face answers, one row for each method.
struct Routes
{
    std::vector<Route> rows;
    std::shared_ptr<Guard> guard = {}; ///< null: everything may be changed
    std::shared_ptr<OpenUploads> uploads = {}; ///< for the routes that resume them
    std::shared_ptr<RemovedEntries> removed = {}; ///< for those that bring back
    std::shared_ptr<FileSums> sums = {}; ///< for the routes of archives
};

/// The methods of plain HTTP. Those of other folders are added to them.
Routes fileRoutes();

} // namespace standard

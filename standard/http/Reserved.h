#pragma once

#include <QByteArray>

namespace standard {

struct Route;
struct Routes;
enum class Method;

/// What lies below this name of the root is the server's own, whatever is shared: never listed,
/// made or changed.
constexpr auto reservedName = ".quillon";

/// Whether a clean path leads there, as its visitor calls it.
bool isReserved(const QByteArray &path);

/// The same of a path of the share and a visitor who has that home, see `Access`.
bool isReserved(const QByteArray &home, const QByteArray &path);

/// Whether a route answers for what a clean path names, when the query is right as well.
bool isFor(const Route &route, const QByteArray &path);

/// The first that answers a method for it and a query; null when there is none.
const Route *findRoute(const Routes &routes, Method method, const QByteArray &path,
                       const QByteArray &query = {});

} // namespace standard

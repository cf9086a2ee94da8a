#include "standard/http/Reserved.h"

#include "files/Path.h"
#include "server/Access.h"
#include "standard/http/Routes.h"
#include "standard/http/Uri.h"

namespace standard {

bool isReserved(const QByteArray &path)
{
    static const QByteArray name = reservedName;
    return isWithin(path, name);
}

bool isReserved(const QByteArray &home, const QByteArray &path)
{
    return isReserved(seenFrom(home, path));
}

bool isFor(const Route &route, const QByteArray &path)
{
    return route.below ? isWithin(path, route.below) : !isReserved(path);
}

const Route *findRoute(const Routes &routes, Method method, const QByteArray &path,
                       const QByteArray &query)
{
    for (const Route &route : routes.rows) {
        if (route.method == method && isFor(route, path)
            && (!route.parameter || (!query.isEmpty() && formValue(query, route.parameter))))
            return &route;
    }
    return nullptr;
}

} // namespace standard

#include "classic/dav/Routes.h"

#include "classic/dav/Copy.h"
#include "classic/dav/Delete.h"
#include "classic/dav/MkCol.h"
#include "classic/dav/Move.h"
#include "classic/dav/PropFind.h"
#include "classic/dav/Put.h"
#include "classic/dav/SimpleMethods.h"

namespace {

template <typename Kind> constexpr Route route(Request::Method method)
{
    return { method, nullptr, makeResponder<Kind> };
}

} // namespace

Routes davRoutes()
{
    return {
        route<PropFind>(Request::PropFind), route<Options>(Request::Options),
        route<Delete>(Request::Delete),     route<Copy>(Request::Copy),
        route<Put>(Request::Put),           route<Move>(Request::Move),
        route<MkCol>(Request::MkCol),       route<Head>(Request::Head),
        route<Lock>(Request::Lock),         route<UnLock>(Request::UnLock),
    };
}

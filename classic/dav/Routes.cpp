#include "classic/dav/Routes.h"

#include "classic/dav/Copy.h"
#include "classic/dav/Delete.h"
#include "classic/dav/MkCol.h"
#include "classic/dav/Move.h"
#include "classic/dav/PropFind.h"
#include "classic/dav/Put.h"
#include "classic/dav/SimpleMethods.h"

namespace {

template <typename Kind> Responder *make(Profile *, Request *request)
{
    return new Kind(request);
}

template <typename Kind> constexpr Route row(Request::Method method, ReplyCall call)
{
    return { method, nullptr, Kind::name, make<Kind>, call };
}

} // namespace

Routes davRoutes()
{
    return {
        row<PropFind>(Request::PropFind, ReplyCall::SharedAndProfile),
        row<Options>(Request::Options, ReplyCall::Plain),
        row<Delete>(Request::Delete, ReplyCall::SharedAndProfile),
        row<Copy>(Request::Copy, ReplyCall::Shared),
        row<Put>(Request::Put, ReplyCall::SharedAndProfile),
        row<Move>(Request::Move, ReplyCall::Shared),
        row<MkCol>(Request::MkCol, ReplyCall::Shared),
        row<Head>(Request::Head, ReplyCall::Shared),
        row<Lock>(Request::Lock, ReplyCall::Shared),
        row<UnLock>(Request::UnLock, ReplyCall::Plain),
    };
}

#include "classic/dav/Rows.h"

#include "classic/dav/Copy.h"
#include "classic/dav/Delete.h"
#include "classic/dav/MkCol.h"
#include "classic/dav/Move.h"
#include "classic/dav/PropFind.h"
#include "classic/dav/Put.h"
#include "classic/dav/SimpleMethods.h"

namespace {

template <typename Responder> Response *make(Configuration *, HTTP_Request *request)
{
    return new Responder(request);
}

template <typename Responder>
constexpr ResponderRow row(HTTP_Request::Method method, ReplyCall call)
{
    return { method, nullptr, Responder::name, make<Responder>, call };
}

} // namespace

ResponderRows davRows()
{
    return {
        row<PropFind>(HTTP_Request::PropFind, ReplyCall::SharedAndProfile),
        row<Options>(HTTP_Request::Options, ReplyCall::Plain),
        row<Delete>(HTTP_Request::Delete, ReplyCall::SharedAndProfile),
        row<Copy>(HTTP_Request::Copy, ReplyCall::Shared),
        row<Put>(HTTP_Request::Put, ReplyCall::SharedAndProfile),
        row<Move>(HTTP_Request::Move, ReplyCall::Shared),
        row<MkCol>(HTTP_Request::MkCol, ReplyCall::Shared),
        row<Head>(HTTP_Request::Head, ReplyCall::Shared),
        row<Lock>(HTTP_Request::Lock, ReplyCall::Shared),
        row<UnLock>(HTTP_Request::UnLock, ReplyCall::Plain),
    };
}

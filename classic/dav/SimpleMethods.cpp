#include "classic/dav/SimpleMethods.h"

namespace {

constexpr auto extraLines = "DAV: 1,2\r\n"
                            "Allow: GET, POST, PUT, DELETE, OPTIONS, PROPFIND, COPY, MOVE, MKCOL, "
                            "HEAD, LOCK, UNLOCK\r\n";

} // namespace

void Options::reply()
{
    sendHeader(Status::ok, 0, extraLines);
}

void Head::reply()
{
    answer(facts(requestedPath()).exists ? Status::ok : Status::notFound);
}

void Lock::reply()
{
    answer(facts(requestedPath()).exists ? "200 Locked" : Status::notFound);
}

void UnLock::reply()
{
    answer(Status::ok);
}

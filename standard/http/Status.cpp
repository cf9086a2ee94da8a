#include "standard/http/Status.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace standard {

namespace {

/// As they stand in the status line.
constexpr std::array<std::string_view, 33> texts{
    "200 OK",
    "201 Created",
    "204 No Content",
    "206 Partial Content",
    "207 Multi-Status",
    "303 See Other",
    "304 Not Modified",
    "308 Permanent Redirect",
    "400 Bad Request",
    "401 Unauthorized",
    "403 Forbidden",
    "404 Not Found",
    "405 Method Not Allowed",
    "409 Conflict",
    "411 Length Required",
    "412 Precondition Failed",
    "413 Content Too Large",
    "415 Unsupported Media Type",
    "416 Range Not Satisfiable",
    "417 Expectation Failed",
    "421 Misdirected Request",
    "422 Unprocessable Content",
    "423 Locked",
    "424 Failed Dependency",
    "429 Too Many Requests",
    "431 Request Header Fields Too Large",
    "460 Checksum Mismatch",
    "500 Internal Server Error",
    "501 Not Implemented",
    "502 Bad Gateway",
    "503 Service Unavailable",
    "505 HTTP Version Not Supported",
    "507 Insufficient Storage",
};

constexpr int codeOf(std::string_view text)
{
    return (text[0] - '0') * 100 + (text[1] - '0') * 10 + (text[2] - '0');
}

} // namespace

QByteArray statusText(Status status)
{
    const auto *const found =
        std::find_if(texts.begin(), texts.end(),
                     [status](std::string_view text) { return codeOf(text) == int(status); });
    return found == texts.end() ? QByteArray::number(int(status)) + ' '
                                : QByteArray(found->data(), int(found->size()));
}

bool isBodiless(Status status)
{
    return status == Status::NoContent || status == Status::NotModified;
}

} // namespace standard

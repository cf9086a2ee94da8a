#pragma once

/// The status lines that several answers share.
struct Status
{
    static constexpr auto ok = "200 OK";
    static constexpr auto created = "201 Created";
    static constexpr auto multiStatus = "207 Multi-Status";
    static constexpr auto forbidden = "403 Forbidden";
    static constexpr auto notFound = "404 Not Found";
    static constexpr auto methodNotAllowed = "405 Method Not Allowed";
    static constexpr auto preconditionFailed = "412 Precondition Failed";
    static constexpr auto locked = "423 Locked";
    static constexpr auto insufficientStorage = "507 Insufficient Storage";
};

#pragma once

#include <QByteArray>

namespace standard {

/// The status codes of replies (RFC 9110, section 15; RFC 4918, section 11; RFC 6585).
enum class Status {
    Ok = 200,
    Created = 201,
    NoContent = 204,
    PartialContent = 206,
    MultiStatus = 207,
    SeeOther = 303,
    NotModified = 304,
    PermanentRedirect = 308,
    BadRequest = 400,
    Unauthorized = 401,
    Forbidden = 403,
    NotFound = 404,
    MethodNotAllowed = 405,
    Conflict = 409,
    LengthRequired = 411,
    PreconditionFailed = 412,
    ContentTooLarge = 413,
    UnsupportedMediaType = 415,
    RangeNotSatisfiable = 416,
    ExpectationFailed = 417,
    MisdirectedRequest = 421,
    UnprocessableContent = 422,
    Locked = 423,
    FailedDependency = 424,
    TooManyRequests = 429,
    HeadTooLarge = 431,
    ChecksumMismatch = 460, ///< of a resumable upload
    InternalError = 500,
    NotImplemented = 501,
    BadGateway = 502,
    Unavailable = 503,
    VersionNotSupported = 505,
    InsufficientStorage = 507
};

/// "404 Not Found"
QByteArray statusText(Status status);

/// Whether a reply of this status never has a body (RFC 9110, section 6.4.1).
bool isBodiless(Status status);

} // namespace standard

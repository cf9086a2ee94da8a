#include "standard/http/Status.h"

#include <array>

namespace standard {

namespace {

struct StatusRow
{
    Status status;
    const char *reason;
};

constexpr std::array<StatusRow, 32> statuses{ {
    { Status::Ok, "OK" },
    { Status::Created, "Created" },
    { Status::NoContent, "No Content" },
    { Status::PartialContent, "Partial Content" },
    { Status::MultiStatus, "Multi-Status" },
    { Status::NotModified, "Not Modified" },
    { Status::PermanentRedirect, "Permanent Redirect" },
    { Status::BadRequest, "Bad Request" },
    { Status::Unauthorized, "Unauthorized" },
    { Status::Forbidden, "Forbidden" },
    { Status::NotFound, "Not Found" },
    { Status::MethodNotAllowed, "Method Not Allowed" },
    { Status::Conflict, "Conflict" },
    { Status::LengthRequired, "Length Required" },
    { Status::PreconditionFailed, "Precondition Failed" },
    { Status::ContentTooLarge, "Content Too Large" },
    { Status::UnsupportedMediaType, "Unsupported Media Type" },
    { Status::RangeNotSatisfiable, "Range Not Satisfiable" },
    { Status::ExpectationFailed, "Expectation Failed" },
    { Status::MisdirectedRequest, "Misdirected Request" },
    { Status::UnprocessableContent, "Unprocessable Content" },
    { Status::Locked, "Locked" },
    { Status::FailedDependency, "Failed Dependency" },
    { Status::TooManyRequests, "Too Many Requests" },
    { Status::HeadTooLarge, "Request Header Fields Too Large" },
    { Status::ChecksumMismatch, "Checksum Mismatch" },
    { Status::InternalError, "Internal Server Error" },
    { Status::NotImplemented, "Not Implemented" },
    { Status::BadGateway, "Bad Gateway" },
    { Status::Unavailable, "Service Unavailable" },
    { Status::VersionNotSupported, "HTTP Version Not Supported" },
    { Status::InsufficientStorage, "Insufficient Storage" },
} };

} // namespace

QByteArray statusText(Status status)
{
    QByteArray text = QByteArray::number(int(status)) + ' ';
    for (const StatusRow &row : statuses) {
        if (row.status == status)
            text += row.reason;
    }
    return text;
}

bool isBodiless(Status status)
{
    return status == Status::NoContent || status == Status::NotModified;
}

} // namespace standard

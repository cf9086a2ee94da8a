#include "standard/http/Method.h"

#include <array>

namespace standard {

namespace {

struct MethodRow
{
    Method method;
    const char *name;
    bool safe;
};

constexpr std::array<MethodRow, 14> methodRows{ {
    { Method::Options, "OPTIONS", true },
    { Method::Get, "GET", true },
    { Method::Head, "HEAD", true },
    { Method::Post, "POST", false },
    { Method::Put, "PUT", false },
    { Method::Patch, "PATCH", false },
    { Method::Delete, "DELETE", false },
    { Method::MkCol, "MKCOL", false },
    { Method::Copy, "COPY", false },
    { Method::Move, "MOVE", false },
    { Method::PropFind, "PROPFIND", true },
    { Method::PropPatch, "PROPPATCH", false },
    { Method::Lock, "LOCK", false },
    { Method::Unlock, "UNLOCK", false },
} };

} // namespace

Method methodNamed(const QByteArray &name)
{
    for (const MethodRow &row : methodRows) {
        if (name == row.name)
            return row.method;
    }
    return Method::Unknown;
}

QByteArray nameOf(Method method)
{
    for (const MethodRow &row : methodRows) {
        if (row.method == method)
            return row.name;
    }
    return {};
}

bool isSafe(Method method)
{
    for (const MethodRow &row : methodRows) {
        if (row.method == method)
            return row.safe;
    }
    return false;
}

} // namespace standard

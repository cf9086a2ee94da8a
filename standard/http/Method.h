#pragma once

#include <QByteArray>

namespace standard {

/// The methods of RFC 9110, RFC 5789 and RFC 4918 that a request may use here.
enum class Method {
    Unknown,
    Options,
    Get,
    Head,
    Post,
    Put,
    Patch,
    Delete,
    MkCol,
    Copy,
    Move,
    PropFind,
    PropPatch,
    Lock,
    Unlock
};

/// By its name, which is case-sensitive.
Method methodNamed(const QByteArray &name);

/// As it stands in a request; empty for `Unknown`.
QByteArray nameOf(Method method);

/// Whether it never changes anything (RFC 9110, section 9.2.1).
bool isSafe(Method method);

} // namespace standard

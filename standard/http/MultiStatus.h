#pragma once

#include "standard/http/Status.h"

#include <QByteArray>

#include <string>

namespace standard {

// The pieces of a document of RFC 4918. All of it binds the prefix D to its namespace, for clients
// that don't look further.

constexpr auto xmlType = "application/xml; charset=utf-8";

/// Appends `bytes` to one that is long, and so a string of chars, which grows faster.
inline void addBytes(std::string &to, const QByteArray &bytes)
{
    to.append(bytes.constData(), std::size_t(bytes.size()));
}

/// The start tag of a document's root and what stands before it.
QByteArray rootStart(const char *name);
QByteArray rootEnd(const char *name);

/// The "href" element of what `urlPath` gives.
QByteArray href(const QByteArray &url);

/// A "propstat" of the elements in `properties`.
QByteArray propStat(const QByteArray &properties, Status status);

/// A "status" element.
QByteArray statusElement(Status status);

/// A body that tells which condition failed (RFC 4918, section 16).
QByteArray errorBody(const char *condition, const QByteArray &content = {});

} // namespace standard

#pragma once

#include <QByteArray>
#include <QtGlobal>

struct EntryFacts;

namespace standard {

struct Request;

/// What tells one version of a resource from another (RFC 9110, section 8.8).
struct Validators
{
    bool exists = false;
    QByteArray tag; ///< strong, with its quotes; empty for a folder
    qint64 modified = 0; ///< seconds since 1970-01-01 UTC

    static Validators of(const EntryFacts &facts);
};

/// The strong tag of a file: every change of it gives another one, and what takes the place of a
/// file is another file.
QByteArray entityTag(const EntryFacts &facts);

enum class Verdict { Proceed, NotModified, Failed };

/// What the conditions of a request say of the resource it is about, in the order of RFC 9110,
/// section 13.2.2. An If-None-Match that is none, as some programs send it, matches nothing.
bool hasConditions(const Request &request); ///< else any verdict is `Proceed`
Verdict judge(const Request &request, const Validators &current);

/// Whether a Range is to be looked at: there is no If-Range, or it fits.
bool rangeApplies(const Request &request, const Validators &current);

/// Whether the request says that it is only to be done under some condition of these.
bool isConditional(const Request &request);

} // namespace standard

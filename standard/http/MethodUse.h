#pragma once

#include "config/Rights.h"
#include "standard/http/Method.h"

struct Access;
struct EntryFacts;

namespace standard {

/// What a method is of use for, and the rights that it takes.
struct MethodUse
{
    struct Uses
    {
        bool file;
        bool folder;
        bool missing;
        bool root; ///< of what the visitor sees
    };
    struct Needs
    {
        Rights file;
        Rights folder;
        Rights missing;
    };

    Method method;
    Uses uses;
    Needs needs;
    bool places = false; ///< at its destination something is added or changed

    /// Whether there is a use for it where `found` was found.
    bool fits(const EntryFacts &found, bool isRoot) const;

    /// Whether the visitor has the rights for it at `path`, where `found` was found.
    bool isPermitted(const Access &access, const QByteArray &path, const EntryFacts &found) const;
};

/// Null for methods that always answer.
const MethodUse *useOf(Method method);

} // namespace standard

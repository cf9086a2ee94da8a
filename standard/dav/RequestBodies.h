#pragma once

#include "standard/dav/XmlReader.h"

#include <QByteArray>

#include <variant>
#include <vector>

namespace standard {

/// What a body says, or the status to refuse it with: it can't be understood, or there is more of
/// something than we take.
template <typename Body> using Parsed = std::variant<Body, Status>;

/// What a PROPFIND asks for (RFC 4918, section 14.20).
struct PropFindBody
{
    enum class Kind {
        All, ///< and `names` besides
        Names, ///< what there is, without values
        Named ///< `names` alone
    };

    Kind kind = Kind::All;
    std::vector<XmlName> names;

    /// An empty body asks for all.
    static Parsed<PropFindBody> parse(const QByteArray &body);
};

/// One step of a PROPPATCH.
struct PropertyChange
{
    XmlName name;
    bool isRemoval = false;
    XmlElement value; ///< the property's whole element; empty for a removal
};

/// What a PROPPATCH does (RFC 4918, section 14.19).
struct PropPatchBody
{
    std::vector<PropertyChange> changes; ///< in order; at least one
    bool fits = true; ///< else the values are more than is kept of any file, and not whole

    static Parsed<PropPatchBody> parse(const QByteArray &body);
};

/// What a LOCK asks for (RFC 4918, section 14.11).
struct LockBody
{
    bool shared = false;
    QByteArray owner; ///< the whole element; empty when there is none

    /// Another kind of lock than ours can't be understood.
    static Parsed<LockBody> parse(const QByteArray &body);
};

} // namespace standard

#pragma once

#include "standard/dav/XmlReader.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace standard {

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

    /// An empty body asks for all. None for one that can't be understood.
    static std::optional<PropFindBody> parse(const QByteArray &body);
};

/// One step of a PROPPATCH.
struct PropertyChange
{
    XmlName name;
    bool isRemoval = false;
    XmlElement value; ///< the property's whole element; empty for a removal
};

/// The steps of a PROPPATCH in order (RFC 4918, section 14.19). None for a body that can't be
/// understood or has no step.
std::optional<std::vector<PropertyChange>> parsePropPatch(const QByteArray &body);

/// What a LOCK asks for (RFC 4918, section 14.11).
struct LockBody
{
    bool shared = false;
    QByteArray owner; ///< the whole element; empty when there is none

    /// None for a body that can't be understood, or names another kind of lock.
    static std::optional<LockBody> parse(const QByteArray &body);
};

} // namespace standard

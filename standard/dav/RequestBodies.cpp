#include "standard/dav/RequestBodies.h"

#include <utility>

namespace standard {

namespace {

/// The names of the elements in the current one, which is left.
std::vector<XmlName> takeNames(XmlReader &body)
{
    std::vector<XmlName> names;
    while (body.enter()) {
        names.push_back(body.name());
        body.skip();
    }
    return names;
}

bool enterRoot(XmlReader &body, const char *name)
{
    return body.enter() && body.name().isDav(name);
}

/// The properties of the current "set" or "remove", which is left.
void takeChanges(XmlReader &body, bool isRemoval, std::vector<PropertyChange> &changes)
{
    while (body.enter()) {
        if (!body.name().isDav("prop")) {
            body.skip();
            continue;
        }
        while (body.enter()) {
            PropertyChange change{ body.name(), isRemoval, {} };
            if (isRemoval)
                body.skip();
            else
                change.value = body.take();
            changes.push_back(std::move(change));
        }
    }
}

} // namespace

std::optional<PropFindBody> PropFindBody::parse(const QByteArray &body)
{
    PropFindBody asked;
    if (body.isEmpty())
        return asked;
    XmlReader reader(body);
    if (!enterRoot(reader, "propfind"))
        return std::nullopt;
    bool understood = false;
    while (reader.enter()) {
        const XmlName name = reader.name();
        const bool isNamed = name.isDav("prop");
        const bool isKind = isNamed || name.isDav("propname") || name.isDav("allprop");
        // At most one of them (RFC 4918, section 14.20).
        if (isKind && std::exchange(understood, true))
            return std::nullopt;
        if (isNamed)
            asked.kind = Kind::Named;
        else if (name.isDav("propname"))
            asked.kind = Kind::Names;
        if (isNamed || name.isDav("include"))
            asked.names = takeNames(reader);
        else
            reader.skip();
    }
    return understood && reader.end() ? std::make_optional(asked) : std::nullopt;
}

std::optional<std::vector<PropertyChange>> parsePropPatch(const QByteArray &body)
{
    XmlReader reader(body);
    if (!enterRoot(reader, "propertyupdate"))
        return std::nullopt;
    std::vector<PropertyChange> changes;
    while (reader.enter()) {
        const bool isRemoval = reader.name().isDav("remove");
        if (isRemoval || reader.name().isDav("set"))
            takeChanges(reader, isRemoval, changes);
        else
            reader.skip();
    }
    return reader.end() && !changes.empty() ? std::make_optional(changes) : std::nullopt;
}

std::optional<LockBody> LockBody::parse(const QByteArray &body)
{
    XmlReader reader(body);
    if (!enterRoot(reader, "lockinfo"))
        return std::nullopt;
    std::vector<XmlName> scopes;
    std::vector<XmlName> types;
    LockBody asked;
    while (reader.enter()) {
        if (reader.name().isDav("lockscope"))
            scopes = takeNames(reader);
        else if (reader.name().isDav("locktype"))
            types = takeNames(reader);
        else if (reader.name().isDav("owner"))
            asked.owner = reader.take().xml;
        else
            reader.skip();
    }
    if (!reader.end() || scopes.size() != 1 || types.size() != 1 || !types[0].isDav("write"))
        return std::nullopt;
    asked.shared = scopes[0].isDav("shared");
    return asked.shared || scopes[0].isDav("exclusive") ? std::make_optional(asked) : std::nullopt;
}

} // namespace standard

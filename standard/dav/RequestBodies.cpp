#include "standard/dav/RequestBodies.h"

#include "standard/dav/Limits.h"
#include "standard/dav/PropertyStore.h"

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
        if (names.size() > maxProperties)
            body.failAsExcessive();
    }
    return names;
}

bool enterRoot(XmlReader &body, const char *name)
{
    return body.enter() && body.name().isDav(name);
}

/// Reads the steps of a PROPPATCH.
class ChangesReader
{
public:
    ChangesReader(XmlReader &from, PropPatchBody &into)
        : body(from)
        , asked(into)
    {
    }

    /// The properties of the current "set" or "remove", which is left.
    void take(bool isRemoval)
    {
        while (body.enter()) {
            if (body.name().isDav("prop"))
                takeProperties(isRemoval);
            else
                body.skip();
        }
    }

private:
    void takeProperties(bool isRemoval)
    {
        while (body.enter()) {
            PropertyChange change{ body.name(), isRemoval, {} };
            if (isRemoval || !asked.fits)
                body.skip();
            else
                change.value = takeValue();
            asked.changes.push_back(std::move(change));
            if (asked.changes.size() > maxProperties)
                body.failAsExcessive();
        }
    }

    XmlElement takeValue()
    {
        XmlElement value = body.take(left);
        asked.fits = value.isWhole;
        left -= int(value.xml.size());
        return value;
    }

    XmlReader &body;
    PropPatchBody &asked;
    int left = PropertyStore::maxBytes;
};

} // namespace

Parsed<PropFindBody> PropFindBody::parse(const QByteArray &body)
{
    PropFindBody asked;
    if (body.isEmpty())
        return asked;
    XmlReader reader(body, maxElementsInLoop);
    if (!enterRoot(reader, "propfind"))
        return reader.refusal();
    bool understood = false;
    while (reader.enter()) {
        const XmlName name = reader.name();
        const bool isNamed = name.isDav("prop");
        const bool isKind = isNamed || name.isDav("propname") || name.isDav("allprop");
        // At most one of them (RFC 4918, section 14.20).
        if (isKind && std::exchange(understood, true))
            return Status::BadRequest;
        if (isNamed)
            asked.kind = Kind::Named;
        else if (name.isDav("propname"))
            asked.kind = Kind::Names;
        if (isNamed || name.isDav("include"))
            asked.names = takeNames(reader);
        else
            reader.skip();
    }
    if (!reader.end() || !understood)
        return reader.refusal();
    return asked;
}

Parsed<PropPatchBody> PropPatchBody::parse(const QByteArray &body)
{
    XmlReader reader(body);
    if (!enterRoot(reader, "propertyupdate"))
        return reader.refusal();
    PropPatchBody asked;
    ChangesReader changes(reader, asked);
    while (reader.enter()) {
        const bool isRemoval = reader.name().isDav("remove");
        if (isRemoval || reader.name().isDav("set"))
            changes.take(isRemoval);
        else
            reader.skip();
    }
    if (!reader.end() || asked.changes.empty())
        return reader.refusal();
    return asked;
}

Parsed<LockBody> LockBody::parse(const QByteArray &body)
{
    XmlReader reader(body, maxElementsInLoop);
    if (!enterRoot(reader, "lockinfo"))
        return reader.refusal();
    std::vector<XmlName> scopes;
    std::vector<XmlName> types;
    XmlElement owner;
    while (reader.enter()) {
        if (reader.name().isDav("lockscope"))
            scopes = takeNames(reader);
        else if (reader.name().isDav("locktype"))
            types = takeNames(reader);
        else if (reader.name().isDav("owner"))
            owner = reader.take(maxOwner);
        else
            reader.skip();
    }
    if (!reader.end() || scopes.size() != 1 || types.size() != 1 || !types[0].isDav("write"))
        return reader.refusal();
    const bool shared = scopes[0].isDav("shared");
    if (!shared && !scopes[0].isDav("exclusive"))
        return Status::BadRequest;
    if (!owner.isWhole)
        return Status::ContentTooLarge;
    return LockBody{ shared, owner.xml };
}

} // namespace standard

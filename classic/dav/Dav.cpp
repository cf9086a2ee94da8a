#include "classic/dav/Dav.h"

#include "files/Path.h"
#include "files/Share.h"

namespace {

// The header writer puts the name in front once more. Clients have always seen it doubled.
constexpr auto typeLine = "Content-Type: text/xml; charset=\"utf-8\"";

// What a URL's path may hold as it is (RFC 3986, section 3.3), with brackets, which clients know
// from here, and without "&", which would begin an entity in XML.
constexpr auto literalInPath = "!$'()*+,;=:@/[]";

} // namespace

Dav::Dav(Exchange &current)
    : Responder(current)
{
    setContentType(typeLine);
}

QByteArray Dav::hrefPath(const QByteArray &path)
{
    return path.toPercentEncoding(literalInPath);
}

QByteArray Dav::requestedPath() const
{
    return nativePath(request.path);
}

EntryFacts Dav::facts(const QByteArray &path) const
{
    const EntryFacts found = share() ? share()->facts(path) : EntryFacts();
    return found.folder || !path.endsWith('/') ? found : EntryFacts();
}

Place Dav::place(const QByteArray &path) const
{
    return share() ? share()->place(path) : Place();
}

const Share *Dav::share() const
{
    return exchange.service.share.get();
}

DiskWorker &Dav::disk() const
{
    return *exchange.service.setup.disk;
}

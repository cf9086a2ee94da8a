#include "standard/http/OwnNames.h"

#include "config/Profile.h"
#include "net/Socket.h"
#include "server/OwnNames.h"
#include "standard/http/Exchange.h"

namespace standard {

std::optional<QByteArray> calledName(const Exchange &exchange)
{
    const Request &request = exchange.request();
    if (!request.outside.authority.isEmpty())
        return request.outside.authority;
    if (!request.target.authority.isEmpty())
        return request.target.authority;
    return request.field("Host");
}

bool isEncrypted(const Exchange &exchange)
{
    return exchange.request().outside.encrypted.value_or(
        exchange.channel().connection().isEncrypted());
}

bool isMeantForUs(const QByteArray &called, const Exchange &exchange)
{
    const bool saidByProxy = !exchange.request().outside.authority.isEmpty();
    LastName &last = exchange.service().calledLast;
    if (!saidByProxy && last.is(called))
        return true;
    const bool isMeant =
        ::isMeantForUs(called, saidByProxy, Reached::by(exchange.channel().connection()),
                       *exchange.service().profile);
    if (isMeant && !saidByProxy)
        last.keep(called);
    return isMeant;
}

bool isOwnName(const QByteArray &authority, const Exchange &exchange)
{
    const Request &request = exchange.request();
    const int usualPort = isEncrypted(exchange) ? httpsPort : httpPort;
    const Authority meant = Authority::of(authority, usualPort);
    if (meant.host.isEmpty())
        return false;
    const bool isAbsolute = !request.target.authority.isEmpty();
    const QByteArray asked = isAbsolute ? request.target.authority : request.value("Host");
    for (const QByteArray &name : { request.outside.authority, asked }) {
        const Authority called = Authority::of(name, usualPort);
        if (meant.host == called.host && meant.port == called.port)
            return true;
    }
    const Reached reached = Reached::by(exchange.channel().connection());
    return exchange.service().profile->names.contains(meant.host)
        || (meant.port == reached.port && isOwnHost(meant.host, reached.address));
}

} // namespace standard

#include "standard/dav/Visitor.h"

#include "standard/http/Exchange.h"

namespace standard {

QByteArray visitorOf(const Exchange &exchange)
{
    if (!exchange.user().isEmpty())
        return "user " + exchange.user();
    return exchange.request().outside.visitor.toString().toLatin1();
}

} // namespace standard

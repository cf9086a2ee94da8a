#include "standard/http/Visitor.h"

#include "standard/http/Exchange.h"

namespace standard {

QByteArray visitorOf(const Exchange &exchange)
{
    if (!exchange.access().account.isEmpty())
        return "user " + exchange.access().account;
    return exchange.request().outside.visitor.toString().toLatin1();
}

} // namespace standard

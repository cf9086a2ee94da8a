#include "classic/http/Exchange.h"

Session Exchange::session()
{
    if (!client)
        client = service.sessions.handOut();
    return client;
}

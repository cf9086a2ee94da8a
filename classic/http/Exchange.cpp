#include "classic/http/Exchange.h"

Session Exchange::session()
{
    if (!client)
        client = service.sessions.handOut();
    if (!use || use->session() != client)
        use.emplace(client);
    return client;
}

#pragma once

#include "classic/http/Channel.h"
#include "classic/http/Request.h"
#include "server/Service.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// What a responder works with: the request, the channel to its client, the client's session and
/// what is served to whom. One for each connection, owned by its face; it outlives the responders.
struct Exchange
{
    /// The session of this request; a new one is handed out when it brought none.
    Session session();

    Service &service;
    Channel &channel;
    Request request;
    Session client; ///< null until the request needs one
    std::optional<SessionUse> use; ///< of `client`, while a request is being answered
    int status = 0; ///< of the reply that was begun
    bool sendsFile = false; ///< it is one

    // What a form did, which neither the path nor the reply tells.
    std::vector<QByteArray> changed = {}; ///< paths; empty when it is that of the request
    int outcome = 0; ///< the status that a plain method would give; 0: that of the reply
};

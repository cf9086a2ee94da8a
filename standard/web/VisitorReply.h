#pragma once

#include "standard/http/Handler.h"

namespace standard {

constexpr auto visitorPath = ".quillon/visitor";

/// GET and HEAD: who the visitor is, and what they may do to the path that the query names, "/" if
/// it names none; as JSON, for pages that show what can be done.
class VisitorReply final : public Handler
{
public:
    using Handler::Handler;

    void start() override;
};

} // namespace standard

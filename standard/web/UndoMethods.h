#pragma once

#include "standard/http/Delete.h"

namespace standard {

/// Below it a request names what was removed, by the id that it was told of.
constexpr auto undoPath = ".quillon/undo";

/// The field of a DELETE by which a page asks for the chance to take it back ("?1", RFC 8941).
constexpr auto undoField = "Quillon-Undo";

/// DELETE that can be taken back for a moment: "Location" says where. It is an ordinary one where
/// nobody asks for that, or it can't be promised.
class UndoableDelete final : public Delete
{
public:
    using Delete::Delete;

private:
    void remove(Place target) override;
    bool isPromised() const;
};

/// POST: brings back what was removed, to where it was. 409 when something else stands there, or
/// the folder has another place by now.
class Undo final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

} // namespace standard

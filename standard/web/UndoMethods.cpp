#include "standard/web/UndoMethods.h"

#include "files/HiddenUploads.h"
#include "files/Path.h"
#include "files/Rename.h"
#include "files/Share.h"
#include "standard/http/Visitor.h"
#include "standard/web/RemovedEntries.h"

#include <cerrno>
#include <utility>

namespace standard {

void UndoableDelete::remove(Place target)
{
    Place hidden = beside(target, hiddenUploadName());
    FileDescriptor unswept = RemovedEntries::lockedAt(target);
    if (!isPromised() || renameNew(target, hidden) != 0)
        return Delete::remove(std::move(target));
    if (const auto tree = guarded())
        tree->removed(exchange.path());
    const QByteArray id =
        exchange.routes().removed->keep({ visitorOf(exchange), wholeOf(exchange.share()), &disk(),
                                          exchange.path(), std::move(hidden), std::move(unswept) });
    const UrlSpace urls{ exchange.urls().prefix, {} };
    exchange.reply(Status::NoContent,
                   { { "Location", urlPath(urls, joinedPath(undoPath, id), false) } });
}

bool UndoableDelete::isPromised() const
{
    return exchange.request().value(undoField) == "?1"
        && exchange.routes().removed->hasRoomFor(visitorOf(exchange));
}

void Undo::start()
{
    RemovedEntries &all = *exchange.routes().removed;
    const QByteArray id = pathBelow(exchange.path(), undoPath);
    const RemovedEntries::Removed *found = all.find(id, visitorOf(exchange));
    if (!found || found->share != wholeOf(exchange.share()))
        return exchange.refuse(Status::NotFound, "It is gone.");
    const QByteArray path = found->path;
    if (!isPermitted(Right::Delete, path)
        || !exchange.mayChange({ { path, Change::Extent::Tree, true } }))
        return;
    // All that was asked is about this place: the folder may have gone to one that is not theirs.
    const Place was = share()->place(path);
    if (!isSameEntry(entryFacts(was.folder.get()), entryFacts(found->hidden.folder.get())))
        return exchange.refuse(Status::Conflict, "Its folder is somewhere else by now.");
    const int error = renameNew(found->hidden, was);
    if (error == EEXIST)
        return exchange.refuse(Status::Conflict, "Something else has its name by now.");
    if (error != 0)
        return exchange.refuse(statusOf(error));
    all.forget(id);
    exchange.reply(Status::NoContent);
}

} // namespace standard

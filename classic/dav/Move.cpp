#include "classic/dav/Move.h"

#include "files/DiskWorker.h"
#include "files/FileMove.h"
#include "files/Path.h"
#include "files/Rename.h"
#include "files/Share.h"

#include <cerrno>
#include <utility>

namespace {

bool isTaken(const Place &place)
{
    if (!place.isValid())
        return false;
    const EntryFacts facts = entryFacts(place.folder.get(), place.name.constData());
    return facts.exists || facts.link;
}

} // namespace

void Move::reply()
{
    const RequestTarget target = request.destinationTarget();
    if (target.form != RequestTarget::Form::Path)
        return answer(Status::preconditionFailed);
    Place from = place(requestedPath());
    Place to = place(nativePath(target.path));
    // Looked at first: what is missing can't be moved onto a name that is taken either.
    const int error = isTaken(to) ? EEXIST : renameNew(from, to);
    if (error == EEXIST)
        return answer("412 Name exists");
    if (error == EXDEV)
        return moveAcross(std::move(from), std::move(to));
    finish(error == 0);
}

/// Of what stands on several file systems only a file is moved.
void Move::moveAcross(Place from, Place to)
{
    std::optional<OpenFile> file = share()->openFile(requestedPath());
    if (!file)
        return finish(false);
    const auto job = std::make_shared<FileMove>(std::move(*file), std::move(from), std::move(to));
    disk().run(job, this, [this, job] { finish(job->error() == DiskError::None); });
}

void Move::finish(bool moved)
{
    answer(moved ? Status::created : "500 Rename Failed");
}

#include "standard/http/Move.h"

#include "files/CopiedRemoval.h"
#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Rename.h"
#include "standard/http/PlacedCopy.h"

#include <QPointer>
#include <QString>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace standard {

/// Removes what was copied to another file system, once that has it on its disk.
class CopiedSource final : public DiskJob
{
public:
    explicit CopiedSource(Place from)
        : removal(std::move(from))
    {
    }

    /// Before it is run. `copiedTo` is the folder in which the copy stands.
    void setCopied(std::shared_ptr<CopiedEntries> copied, int copiedTo)
    {
        removal.setCopied(std::move(copied));
        unsynced.reset(::openat(copiedTo, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }

    bool run(const Budget &until) override
    {
        if (!until.mayBlock())
            return false;
        if (synced)
            return removal.run(until);
        synced = ::syncfs(unsynced.get()) == 0;
        return !synced;
    }

    bool isSync() const override { return !synced; }

    bool isWhole() const { return removal.isWhole(); }

private:
    CopiedRemoval removal;
    FileDescriptor unsynced; ///< on the other file system
    bool synced = false;
};

namespace {

/// What becomes of the locks and properties of what was copied, also when nobody waits any more.
void note(GuardedTree &tree, const QByteArray &from, const QByteArray &to, bool isWhole)
{
    if (isWhole)
        return tree.moved(from, to);
    tree.copied(from, to);
    tree.thinned(from);
}

} // namespace

bool Move::isAllowed()
{
    if (!source().folder || depth() == Depth::Infinity)
        return true;
    exchange.refuse(Status::BadRequest);
    return false;
}

std::vector<Change> Move::changes() const
{
    return { { exchange.path(), Change::Extent::Tree, true },
             { destination(), Change::Extent::Tree, true } };
}

/// Where the file system knows names in any case.
bool Move::isRespelled() const
{
    const QString from = QString::fromUtf8(exchange.path());
    const QString to = QString::fromUtf8(destination());
    return from != to && from.compare(to, Qt::CaseInsensitive) == 0
        && parentPath(exchange.path()) == parentPath(destination());
}

void Move::transfer()
{
    Place from = place();
    const int error = rename(from);
    if (error == EXDEV) {
        removal = std::make_shared<CopiedSource>(std::move(from));
        return copy(Depth::Infinity, true);
    }
    if (error != 0)
        return refuseError(error);
    if (const auto tree = guarded()) {
        if (replaces())
            tree->removed(destination());
        tree->moved(exchange.path(), destination());
    }
    succeed();
}

int Move::rename(const Place &from)
{
    const Place &to = destinationPlace();
    if (!replaces() && isRespelled() && entryFacts(to.folder.get(), to.name.constData()).exists)
        return respell(from, to);
    if (!replaces())
        return renameNew(from, to);
    Place old;
    const int error = renameReplacing(from, to, old);
    removeReplaced(disk(), std::move(old));
    return error;
}

void Move::placed(const PlacedCopy &job)
{
    removal->setCopied(job.copied(), job.place().folder.get());
    DiskWorker *worker = &disk();
    worker->run(removal, worker,
                [job = removal, self = QPointer<Move>(this), tree = guarded(),
                 from = exchange.path(), to = destination()] {
                    if (tree)
                        note(*tree, from, to, job->isWhole());
                    if (self && !self->isOver())
                        self->answerRemoval();
                });
}

void Move::answerRemoval()
{
    if (removal->isWhole())
        return succeed();
    exchange.refuse(Status::Forbidden, "It is copied, but not all of it could be removed.");
}

} // namespace standard

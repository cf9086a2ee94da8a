#pragma once

#include "files/DiskError.h"
#include "files/Entry.h"
#include "files/Place.h"
#include "standard/http/Conditions.h"
#include "standard/http/Handler.h"

#include <QByteArray>

#include <memory>
#include <vector>

class DiskWorker;
class Share;

namespace standard {

/// What `errno` means for whoever asked for the file.
Status statusOf(int error);

/// What it means when something can't be put on the disk.
Status statusOf(DiskError error);

/// "ETag" and "Last-Modified".
Fields validatorFields(const Validators &current);

/// Those of a file.
Fields validatorFields(const EntryFacts &facts);

/// Why something below a folder stays as it is.
struct MemberFailure
{
    QByteArray path; ///< below the folder
    Status status;
};

/// The base of the handlers that work on what a path names.
class ResourceHandler : public Handler
{
public:
    using Handler::Handler;

protected:
    /// Null when what is shared can't be opened.
    const Share *share() const { return exchange.share().get(); }

    DiskWorker &disk() const { return *exchange.service().setup.disk; }

    /// A look at what the request names. A "/" at its end asks for a folder: a file is not there
    /// then.
    EntryFacts facts() const;

    /// The same of a path of the share.
    EntryFacts factsAt(const QByteArray &path) const;

    /// Where it stands or is to stand. Not valid, with `errno`, when there is no such folder.
    Place place() const;

    /// Whether the visitor has the rights that the method takes where `found` was found; else the
    /// request is refused. To be asked first: other answers tell what there is.
    bool isPermitted(const EntryFacts &found);

    /// The same of `needed` at any path.
    bool isPermitted(Rights needed, const QByteArray &path);

    /// Whether the visitor may put anything at a path, whatever stands there; else the
    /// request is refused.
    bool mayPutAt(const QByteArray &path);

    /// Whether the visitor may add there, and nothing else.
    bool onlyAdds(const QByteArray &path) const;

    /// Where a file that is sent to `path` is to stand. Who may add and nothing else is not to
    /// learn what is there, nor to be kept from leaving a file: it stands beside what has its name.
    QByteArray pathToAdd(const QByteArray &path) const;

    /// The same of a folder, which is always found again: it stands beside what is none and has its
    /// name, or that of one above it.
    QByteArray folderToAdd(const QByteArray &path) const;

    /// Whether the conditions of the request let it be done; else it is refused.
    bool meetsConditions(const EntryFacts &found);

    /// The same of something else, with the fields that say so when it wasn't modified.
    bool meetsConditions(const Validators &current, Fields unmodified);

    /// To be told what becomes of what the request changes; null when nobody is to.
    std::shared_ptr<GuardedTree> guarded() const;

    /// Answers with what could not be done to the entries below the folder `base` of the share.
    void refuseMembers(const QByteArray &base, const std::vector<MemberFailure> &failures);

    /// Whether the request is about something that may be changed or removed: not the root that
    /// the visitor sees.
    bool namesEntry() const { return exchange.path() != exchange.access().home; }

private:
    bool isTaken(const QByteArray &path) const;
    QByteArray takenPart(const QByteArray &path) const;
    QByteArray folderBeside(const QByteArray &path) const;
};

} // namespace standard

#include "classic/dav/Copy.h"

#include "files/DiskWorker.h"
#include "files/FileCopy.h"
#include "files/Path.h"
#include "files/Share.h"
#include "files/TreeCopy.h"
#include "server/MemoryTrim.h"

#include <QFile>

#include <numeric>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char copied = '+';
constexpr char notCopied = '-';
constexpr auto copyFailed = "500 File Copy Failed";

/// The name that a path ends with; none when it ends with a "/".
QByteArray nameOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

QByteArray folderOf(const QByteArray &path)
{
    return path.left(qMax(0, int(path.lastIndexOf('/'))));
}

Place inWorkingFolder(const QByteArray &name)
{
    Place place;
    place.folder.reset(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    place.name = name;
    return place;
}

EntryFacts factsOf(const Place &place)
{
    return entryFacts(place.folder.get(), place.name.constData());
}

/// Few bytes in one block: a large tree has a million outcomes.
QByteArray packed(const std::vector<TreeCopy::Outcome> &outcomes)
{
    QByteArray batch;
    for (const TreeCopy::Outcome &outcome : outcomes) {
        batch += outcome.error == DiskError::None ? copied : notCopied;
        batch += outcome.path;
        batch += '\0';
    }
    return batch;
}

/// Copies one file; once that is done, the one goes that stood at the destination.
class CopyJob final : public DiskJob
{
public:
    /// `outdated` may be no valid place.
    CopyJob(OpenFile source, Place target, FileCopy::Existing existing, Place outdatedFile,
            Pass given)
        : copy(std::move(source), std::move(target), existing)
        , outdated(std::move(outdatedFile))
        , pass(std::move(given))
    {
    }

    bool run(const Budget &until) override
    {
        if (!copy.run(until))
            return false;
        if (isDone() && outdated.isValid())
            ::unlinkat(outdated.folder.get(), outdated.name.constData(), 0);
        return true;
    }

    bool isDone() const { return copy.error() == DiskError::None; }

private:
    FileCopy copy;
    Place outdated;
    Pass pass; ///< it goes to its end also when nobody waits for the answer any more
};

/// Where the copies of a tree go: the whole path of a source is nested below the destination.
struct Nest
{
    std::shared_ptr<const Share> share;
    QByteArray sharedPath;
    QByteArray source;
    QByteArray destination;

    std::unique_ptr<FileCopy> copy(const QByteArray &path, OpenFile file) const
    {
        const QByteArray folder = destination + '/' + folderOf(path.mid(source.size()));
        const QByteArray target = folder + '/' + sharedPath + '/' + path;
        const bool exists = share->facts(target).file;
        return std::make_unique<FileCopy>(
            std::move(file), exists ? share->target(target) : share->place(target),
            exists ? FileCopy::Existing::Replaced : FileCopy::Existing::Kept);
    }
};

} // namespace

Copy::Copy(Exchange &current)
    : DocumentReply(current)
{
}

Copy::~Copy()
{
    stop();
}

void Copy::reply()
{
    overwrite = request.overwrite != "F";
    if (const char *status = reasonToRefuse())
        return answer(status);
    exchange.service.setup.copies->enter(this);
}

/// Null when there is none.
const char *Copy::reasonToRefuse() const
{
    const QByteArray path = destinationPath();
    const EntryFacts source = facts(requestedPath());
    const EntryFacts there = facts(path);
    const bool kept = there.file && (!overwrite || source.folder);
    if (request.destinationTarget().form != RequestTarget::Form::Path || isSameEntry(source, there)
        || kept)
        return Status::preconditionFailed;
    if (!source.folder && !source.file)
        return "410 Gone";
    return path.contains('\0') ? copyFailed : nullptr;
}

QByteArray Copy::destinationPath() const
{
    return nativePath(request.destinationTarget().path);
}

void Copy::take(Pass given)
{
    if (!channel.canAnswer())
        return channel.end();
    // Others may have changed what is there while it waited.
    if (const char *status = reasonToRefuse())
        return answer(status);
    pass = std::move(given);
    const QByteArray path = destinationPath();
    if (facts(requestedPath()).folder)
        return copyTree(path);
    copyFile(facts(path).folder ? path + '/' + nameOf(cleanPath(requestedPath())) : path);
}

/// The copy goes to the working folder, whatever folder the destination names; that one only loses
/// the file which stood there.
void Copy::copyFile(const QByteArray &destination)
{
    std::optional<OpenFile> source = share()->openFile(requestedPath());
    const EntryFacts there = facts(destination);
    if (source && isSameEntry(source->facts, there))
        return answer(Status::preconditionFailed);
    Place copy = inWorkingFolder(nameOf(destination));
    if (!source || !copy.isValid())
        return answer(copyFailed);

    const bool existed = there.file;
    const bool inPlace = existed && overwrite && isSameEntry(factsOf(copy), there);
    Place outdated = existed && overwrite && !inPlace ? place(destination) : Place();
    const auto existing = inPlace ? FileCopy::Existing::Replaced : FileCopy::Existing::Kept;
    const auto job = std::make_shared<CopyJob>(std::move(*source), std::move(copy), existing,
                                               std::move(outdated), std::move(pass));
    disk().run(job, this, [this, job, existed] {
        const char *done = existed ? "204 No Content" : Status::created;
        answer(job->isDone() ? done : copyFailed);
    });
}

void Copy::copyTree(const QByteArray &destination)
{
    const QByteArray source = cleanPath(requestedPath());
    const std::shared_ptr<const Share> shared = exchange.service.share;
    sharedPath = nativePath(exchange.service.shared.absoluteFilePath());
    if (sharedPath.endsWith('/'))
        sharedPath.chop(1);
    TreeCopy::Begin begin = [](const QByteArray &, OpenFile) { return nullptr; };
    if (overwrite) {
        begin = [nest = Nest{ shared, sharedPath, source, destination }](const QByteArray &path,
                                                                         OpenFile file) {
            return nest.copy(path, std::move(file));
        };
    }
    tree = std::make_shared<TreeCopy>(shared, source, std::move(begin));
    copyOn();
}

void Copy::copyOn()
{
    disk().run(tree, this, [this] { takeOutcomes(); });
}

void Copy::takeOutcomes()
{
    batches.push_back(packed(tree->takeOutcomes()));
    if (!tree->isAtEnd())
        return copyOn();
    tree.reset();
    const auto bytes =
        std::accumulate(batches.begin(), batches.end(), qint64(0),
                        [](qint64 sum, const QByteArray &batch) { return sum + batch.capacity(); });
    pass.keep(bytes);
    exchange.service.setup.memory->trimSoon();
    sendOutcomes();
}

void Copy::sendOutcomes()
{
    // An attribute without a value: that is how this document has always begun.
    sendDocument({ QByteArray(declaration) + "<multistatus xmlns>", qint64(batches.size()),
                   [this](QByteArray &text, qint64 index) {
                       appendBatch(text, batches[std::size_t(index)]);
                   },
                   "</multistatus>" });
}

void Copy::appendBatch(QByteArray &text, const QByteArray &batch) const
{
    for (const QByteArray &outcome : batch.split('\0')) {
        if (outcome.isEmpty())
            continue;
        const QString path = QFile::decodeName(sharedPath + '/' + outcome.mid(1));
        text += "<response><href>" + hrefPath(path.toUtf8()) + "</href>";
        text += "<status>HTTP/1.1 ";
        text += statusOf(outcome.front());
        text += "</status></response>";
    }
}

const char *Copy::statusOf(char outcome) const
{
    if (!overwrite)
        return Status::preconditionFailed;
    return outcome == copied ? Status::ok : "500 File copy error";
}

void Copy::replyEnded()
{
    stop();
    DocumentReply::replyEnded();
}

void Copy::stop()
{
    exchange.service.setup.copies->leave(this);
    if (tree)
        tree->cancel();
    tree.reset();
    batches = {};
    pass.end();
}

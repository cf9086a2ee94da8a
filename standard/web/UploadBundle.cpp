#include "standard/web/UploadBundle.h"

#include "files/Path.h"
#include "files/Share.h"
#include "files/UploadFile.h"
#include "server/Uploads.h"
#include "standard/http/Protection.h"
#include "standard/http/Uri.h"
#include "standard/web/UploadMetadata.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

namespace standard {

namespace {

constexpr int maxLine = 3 * PATH_MAX + 64; ///< bytes of a line, all of its path encoded

} // namespace

std::optional<BundledFile> parseBundledFile(const QByteArray &line)
{
    const QList<QByteArray> words = line.split(' ');
    constexpr int withTime = 4;
    if (words.size() < withTime - 1 || words.size() > withTime)
        return {};
    const std::optional<qint64> size = numberOf(words[1]);
    const bool replaces = words[2] == "T";
    if (!size || (!replaces && words[2] != "F"))
        return {};
    const QByteArray path = percentDecoded(words[0]).value_or(QByteArray());
    return BundledFile{ isFilePath(path) ? path : QByteArray(), *size, replaces,
                        wantedTime(words.value(withTime - 1)) };
}

void UploadBundle::start()
{
    folder = exchange.access().inShare(pathBelow(exchange.path(), bundlePath));
    if (!mayPutAt(folder))
        return;
    if (exchange.request().value("Content-Type") != contentType)
        return exchange.refuse(Status::UnsupportedMediaType);
    if (!factsAt(folderToAdd(folder)).folder)
        return exchange.refuse(Status::NotFound);
    exchange.saveBody({ [this](const char *data, qint64 size) { return take(data, size); },
                        {},
                        [this] { return isMakingFolder; } });
}

bool UploadBundle::take(const char *data, qint64 size)
{
    qint64 done = 0;
    while (done < size && problem == Status::Ok && !isMakingFolder)
        done +=
            left > 0 ? takeContent(data + done, size - done) : takeHead(data + done, size - done);
    if (!isMakingFolder)
        return problem == Status::Ok;
    putOff(data + done, size - done);
    return true;
}

/// Without memory for it the body is at its end, but not before the folder is there.
void UploadBundle::putOff(const char *data, qint64 size)
{
    restMemory.emplace(*exchange.service().setup.forms, size);
    if (restMemory->isGranted())
        rest = QByteArray(data, int(size));
    else
        problem = Status::Unavailable;
}

void UploadBundle::goOn()
{
    isMakingFolder = false;
    const QByteArray next = std::exchange(rest, {});
    if (left == 0)
        finishFile();
    take(next.constData(), next.size());
    if (isMakingFolder)
        return;
    restMemory.reset();
    exchange.goOnSaving();
}

/// Gives how many of the bytes it took; the same for the content.
qint64 UploadBundle::takeHead(const char *data, qint64 size)
{
    const auto *const end = static_cast<const char *>(std::memchr(data, '\n', std::size_t(size)));
    const qint64 length = end ? end - data : size;
    if (head.size() + length > maxLine) {
        problem = Status::BadRequest;
        return size;
    }
    head.append(data, int(length));
    if (!end)
        return size;
    begin(std::exchange(head, {}));
    return length + 1;
}

qint64 UploadBundle::takeContent(const char *data, qint64 size)
{
    const qint64 taken = std::min(left, size);
    left -= taken;
    if (upload && upload->write(data, taken) != DiskError::None)
        giveUp(statusOf(upload->error()));
    if (left == 0)
        finishFile();
    return taken;
}

void UploadBundle::giveUp(Status why)
{
    files.back().status = why;
    discard();
}

void UploadBundle::begin(const QByteArray &line)
{
    const std::optional<BundledFile> wanted = parseBundledFile(line);
    if (!wanted)
        problem = Status::BadRequest;
    else if (wanted->size > largest || files.size() == mostFiles)
        problem = Status::ContentTooLarge;
    if (problem != Status::Ok)
        return;
    files.emplace_back();
    left = wanted->size;
    files.back().status = beginFile(*wanted);
    if (left == 0 && !isMakingFolder)
        finishFile();
}

/// Why it is not taken, if so. Its content is passed over then.
std::optional<Status> UploadBundle::beginFile(const BundledFile &wanted)
{
    const QByteArray path = joinedPath(folder, wanted.path);
    if (wanted.path.isEmpty())
        return Status::BadRequest;
    if (isKeptName(path))
        return Status::Forbidden;
    Spot &spot = files.back().spot;
    spot = spotAt(path, wanted.replaces);
    if (const std::optional<Status> why = whyNot(spot, wanted.size))
        return why;
    if (factsAt(parentPath(spot.path)).folder)
        return receive(wanted.modified);
    isMakingFolder = true;
    makeFolder(parentPath(spot.path), [this, modified = wanted.modified](int error) {
        files.back().status = error == 0 ? receive(modified) : statusOf(diskError(error));
        goOn();
    });
    return {};
}

/// As `beginFile`, once its folder is there.
std::optional<Status> UploadBundle::receive(std::optional<qint64> modified)
{
    const Spot &spot = files.back().spot;
    upload = newUpload(*exchange.service().profile);
    upload->setCareful();
    if (modified)
        upload->setModified(*modified);
    replaces = spot.replaces;
    const DiskError how = beginAt(spot.path);
    if (how == DiskError::None)
        return {};
    discard();
    return statusOf(how);
}

std::optional<Status> UploadBundle::whyNot(const Spot &spot, qint64 size) const
{
    if (!exchange.access().may(spot.needed, spot.path))
        return Status::Forbidden;
    if (!spot.isFree)
        return Status::PreconditionFailed;
    const std::vector<QByteArray> missing = missingAround(spot.path);
    std::vector<Change> changes = spot.changes();
    for (const QByteArray &each : missing)
        changes.push_back({ each, Change::Extent::Resource, true });
    if (const std::optional<Refusal> refusal = exchange.refusal(changes))
        return refusal->status;
    if (!hasRoom(parentPath(missing.empty() ? spot.path : missing.back()), size))
        return Status::InsufficientStorage;
    return {};
}

void UploadBundle::finishFile()
{
    if (!upload)
        return;
    files.back().received = upload.get();
    keep(!replaces); // as PUT does
}

bool UploadBundle::mayBeKept(const UploadFile &received)
{
    File &file = fileOf(received);
    const std::optional<Refusal> refusal = exchange.refusal(file.spot.changes());
    if (refusal)
        settle(file, refusal->status);
    return !refusal;
}

void UploadBundle::taken(const UploadFile &received)
{
    File &file = fileOf(received);
    switch (received.error()) {
    case DiskError::None:
        return settle(file, file.spot.replaces ? Status::NoContent : Status::Created);
    case DiskError::Changed:
        return settle(file, Status::PreconditionFailed);
    default:
        return settle(file, statusOf(received.error()));
    }
}

UploadBundle::File &UploadBundle::fileOf(const UploadFile &received)
{
    return *std::find_if(files.begin(), files.end(),
                         [&](const File &file) { return file.received == &received; });
}

/// Another file may come to stand where this one's object did.
void UploadBundle::settle(File &file, Status status)
{
    file.status = status;
    file.received = nullptr;
    answerOnceSettled();
}

void UploadBundle::bodySaved(BodyEnd end)
{
    const bool isCut = left > 0 || !head.isEmpty();
    if (problem == Status::Ok && (end != BodyEnd::Whole || isCut))
        problem = Status::BadRequest;
    if (left > 0 && !files.back().status)
        files.back().status = Status::BadRequest;
    discard();
    if (end == BodyEnd::Lost)
        return;
    isBodyOver = true;
    answerOnceSettled();
}

void UploadBundle::answerOnceSettled()
{
    const auto isOpen = [](const File &file) { return !file.status; };
    if (!isBodyOver || std::any_of(files.begin(), files.end(), isOpen))
        return;
    QJsonArray statuses;
    for (const File &file : files)
        statuses.append(int(*file.status));
    Fields fields{ { "Content-Type", "application/json" }, { "Cache-Control", "no-store" } };
    addPageProtection(fields);
    const QJsonObject told{ { QStringLiteral("statuses"), statuses } };
    exchange.reply(problem, std::move(fields), QJsonDocument(told).toJson(QJsonDocument::Compact));
}

std::vector<QByteArray> UploadBundle::addedFiles() const
{
    std::vector<QByteArray> added;
    for (const File &file : files) {
        if (file.status == Status::Created || file.status == Status::NoContent)
            added.push_back(file.spot.path);
    }
    return added;
}

} // namespace standard

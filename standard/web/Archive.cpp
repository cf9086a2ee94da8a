#include "standard/web/Archive.h"

#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/ZipPlan.h"
#include "files/ZipReader.h"
#include "server/MemoryTrim.h"
#include "standard/http/ContentType.h"
#include "standard/http/Protection.h"
#include "standard/http/Reserved.h"
#include "standard/http/Uri.h"

#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <new>
#include <utility>

namespace standard {

namespace {

constexpr qint64 maxNames = qint64(1) << 20; ///< bytes
constexpr std::chrono::minutes longestWaiting(1); ///< before a visitor is told so
constexpr auto formType = "application/x-www-form-urlencoded";
constexpr auto zipType = "application/zip";
constexpr auto tooMuch = "There are too many files for one archive. Take the folders one by one.";

bool isForm(const QByteArray &contentType)
{
    return contentType.split(';').front().trimmed().toLower() == formType;
}

/// Whether all are names of entries: nothing may climb, nor reach below a folder twice.
bool areNames(const std::vector<QByteArray> &names)
{
    return !names.empty() && std::all_of(names.begin(), names.end(), [](const QByteArray &name) {
        return !name.isEmpty() && !name.contains('/') && cleanPath(name) == name;
    });
}

} // namespace

void Archive::start()
{
    const EntryFacts found = facts();
    if (!isPermitted(Right::See | Right::Read, exchange.path()) || !exchange.mayChange({}))
        return;
    if (!found.exists)
        return exchange.refuse(Status::NotFound);
    if (!found.folder || formValue(exchange.request().target.query, parameter) != "zip")
        return exchange.refuse(Status::BadRequest, "There are zip archives of folders alone.");
    if (!exchange.service().profile->showsFolders())
        return exchange.refuse(Status::Forbidden, "Folders are not listed here.");
    if (exchange.request().method != Method::Post)
        return plan({});
    if (!isForm(exchange.request().value("Content-Type")))
        return exchange.refuse(Status::UnsupportedMediaType);
    exchange.readBody(maxNames);
}

void Archive::bodyReady(const QByteArray &form)
{
    std::vector<QByteArray> names = formValues(form, "name");
    // Folders may be named as they are listed.
    for (QByteArray &name : names) {
        if (name.endsWith('/'))
            name.chop(1);
    }
    if (!areNames(names))
        return exchange.refuse(Status::BadRequest, "These are no names of files and folders.");
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    plan(std::move(names));
}

/// Only a few look at the same time.
void Archive::plan(Names names)
{
    search = std::make_shared<ZipPlan>(ZipPlan::Subject{
        exchange.share(), exchange.path(), namesEntry() ? QByteArray() : QByteArray(reservedName),
        std::move(names), *exchange.service().setup.archiveMemory });
    state = State::Waiting;
    exchange.service().setup.archives->enter(this);
    if (state == State::Waiting)
        QTimer::singleShot(longestWaiting, this, [this] { stopWaiting(); });
}

void Archive::stopWaiting()
{
    if (state == State::Waiting)
        refuseForNow();
}

void Archive::refuseForNow()
{
    exchange.refuse(
        Status::Unavailable, "Too many archives are being made.",
        { { "Retry-After",
            QByteArray::number(qint64(std::chrono::seconds(longestWaiting).count())) } });
}

void Archive::take(Pass given)
{
    pass = std::move(given);
    state = State::Planning;
    disk().runAside(search, this, [this] { attempt(State::Planning, &Archive::planned); });
}

/// What a job made possible. Outside of a turn nobody else ends who gets no memory.
void Archive::attempt(State needed, void (Archive::*step)())
{
    if (state != needed)
        return;
    try {
        (this->*step)();
    } catch (const std::bad_alloc &) {
        exchange.breakOff();
    }
}

void Archive::planned()
{
    const int error = search->error();
    if (error == ENOBUFS)
        return refuseForNow();
    if (error == E2BIG)
        return exchange.refuse(Status::InsufficientStorage, tooMuch);
    if (error != 0)
        return exchange.refuse(statusOf(error));
    layout = search->takeLayout();
    pass.keep(layout->memory() + ZipReader::pieceBytes);
    if (exchange.request().method == Method::Post)
        return send(Status::Ok, {}, { 0, layout->size() });
    const Validators current{ true, '"' + layout->tag() + '"', layout->newest() };
    Fields fields{ { "ETag", current.tag }, { "Accept-Ranges", "bytes" } };
    if (meetsConditions(current, fields))
        sendWanted(current, std::move(fields));
}

/// Several ranges are of use to nobody here: all is sent then (RFC 9110, section 14.2).
void Archive::sendWanted(const Validators &current, Fields fields)
{
    const Request &request = exchange.request();
    const qint64 size = layout->size();
    const bool mayBePart = !request.isHead() && rangeApplies(request, current);
    const RangeAnswer answer = mayBePart ? rangesOf(request.value("Range"), size) : RangeAnswer();
    if (answer.kind == RangeAnswer::Kind::Unsatisfiable)
        return exchange.refuse(Status::RangeNotSatisfiable, {},
                               { { "Content-Range", "bytes */" + QByteArray::number(size) } });
    if (answer.parts.size() != 1)
        return send(Status::Ok, std::move(fields), { 0, size });
    const ByteRange part = answer.parts.front();
    fields.push_back({ "Content-Range", contentRange(part, size) });
    send(Status::PartialContent, std::move(fields), part);
}

void Archive::send(Status status, Fields fields, const ByteRange &range)
{
    fields.push_back({ "Content-Type", zipType });
    fields.push_back({ "Content-Disposition", disposition(fileName(), zipType) });
    addFileProtection(fields);
    if (!exchange.startBody(status, std::move(fields), range.count))
        return;
    unsent = range.count;
    reader = std::make_shared<ZipReader>(
        ZipReader::Source{ exchange.share(), exchange.path(), layout, exchange.routes().sums },
        range.first, range.count);
    readOn();
}

QByteArray Archive::fileName() const
{
    const QByteArray &path = exchange.path();
    const QByteArray name = path.isEmpty() ? nativePath(exchange.service().shared.fileName())
                                           : path.mid(path.lastIndexOf('/') + 1);
    return (name.isEmpty() ? "files" : name) + ".zip";
}

void Archive::readOn()
{
    state = State::Reading;
    disk().runAside(reader, this, [this] { attempt(State::Reading, &Archive::pieceRead); });
}

void Archive::pieceRead()
{
    state = State::Resting;
    if (!sendsFile && !exchange.isCongested())
        sendPiece();
}

void Archive::fileSent()
{
    sendsFile = false;
    drained();
}

void Archive::drained()
{
    attempt(State::Resting, &Archive::sendPiece);
}

void Archive::sendPiece()
{
    // Past the traffic limit nothing is sent any more.
    if (reader->hasFailed() || !exchange.canAnswer())
        return exchange.breakOff();
    const QByteArray piece = reader->takePiece();
    FilePart part = reader->takePart();
    const bool isLast = reader->isAtEnd();
    *unsent -= piece.size() + part.count;
    if (!isLast)
        readOn(); // the next one, while this one goes out
    sendsFile = part.file != nullptr;
    exchange.write(piece, sendsFile || !isLast);
    if (sendsFile)
        exchange.sendFile(std::move(part.file), part.offset, part.count);
    else if (isLast)
        exchange.end();
}

void Archive::stop()
{
    const State last = std::exchange(state, State::Idle);
    if (last == State::Idle)
        return;
    if (last == State::Waiting)
        exchange.service().setup.archives->leave(this);
    search->cancel();
    if (reader)
        reader->cancel();
    pass.end();
    exchange.service().setup.memory->trimSoon();
}

} // namespace standard

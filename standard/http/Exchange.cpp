#include "standard/http/Exchange.h"

#include "files/Path.h"
#include "files/Share.h"
#include "standard/http/Protection.h"
#include "standard/http/Reserved.h"

#include <limits>
#include <utility>

namespace standard {

Exchange::Exchange(Service &service, Channel &peerChannel, const Routes &table)
    : m_service(service)
    , m_channel(peerChannel)
    , m_routes(table)
{
}

void Exchange::begin(Request request)
{
    current = std::move(request);
    cleaned = cleanPath(current.target.path);
    served = m_service.closed;
    visitor = {};
    answered = 0;
}

void Exchange::setAccess(const Access &found)
{
    visitor = found;
    if (served && !visitor.home.isEmpty())
        served = m_service.parts.part(served, visitor.home);
    // The server's own names are the same for all.
    if (!isReserved(cleaned))
        cleaned = visitor.inShare(cleaned);
}

void Exchange::forget()
{
    current = Request();
    cleaned.clear();
    visitor = {};
}

void Exchange::finish()
{
    bodyMemory.reset();
    collected.reset();
    served.reset();
}

QByteArray Exchange::urlPath(const QByteArray &path, bool isFolder) const
{
    return standard::urlPath(urls(), path, isFolder);
}

std::optional<QByteArray> Exchange::pathOf(const QByteArray &named) const
{
    const std::optional<QByteArray> inside = current.outside.inside(named);
    return inside ? std::optional(visitor.inShare(cleanPath(*inside))) : std::nullopt;
}

bool Exchange::namesFolder() const
{
    return current.target.path.endsWith('/');
}

/// What it knows is about what is served now.
Guard *Exchange::guard() const
{
    return wholeOf(served) == m_service.closed ? m_routes.guard.get() : nullptr;
}

std::optional<Refusal> Exchange::refusal(const std::vector<Change> &changes) const
{
    return guard() ? guard()->refusal(*this, changes) : std::nullopt;
}

bool Exchange::mayChange(const std::vector<Change> &changes)
{
    std::optional<Refusal> refused = refusal(changes);
    if (!refused)
        return true;
    reply(refused->status, std::move(refused->fields), refused->body);
    return false;
}

void Exchange::readBody(qint64 max)
{
    const Framing &framing = current.framing;
    if (framing.contentLength > max)
        return refuse(Status::ContentTooLarge);
    // What is only announced takes none of it: peers that never send would keep others out.
    bodyMemory.emplace(*m_service.setup.forms, 0);
    collected.emplace();
    const auto collect = [this](const char *data, qint64 size) {
        if (!bodyMemory->resize(collected->size() + size))
            return false;
        collected->append(data, int(size));
        return true;
    };
    m_channel.readBody({ collect, {} }, max);
}

std::optional<QByteArray> Exchange::takeBody()
{
    return std::exchange(collected, std::nullopt);
}

void Exchange::saveBody(BodySink sink)
{
    m_channel.readBody(std::move(sink), std::numeric_limits<qint64>::max());
}

void Exchange::reply(Status status, Fields fields, const QByteArray &body)
{
    const bool bodiless = isBodiless(status);
    const bool sends = !bodiless && !current.isHead() && !body.isEmpty();
    const Ending kind = bodiless ? Ending::NoBody : Ending::Length;
    writeHead({ status, std::move(fields), {}, kind, body.size() }, sends);
    if (sends)
        m_channel.write(body, false);
    m_channel.end();
}

void Exchange::refuse(Status status, const QByteArray &text, Fields fields)
{
    fields.push_back({ "Content-Type", "text/plain; charset=utf-8" });
    addPageProtection(fields);
    reply(status, std::move(fields), (text.isEmpty() ? statusText(status) : text) + '\n');
}

bool Exchange::startBody(Status status, Fields fields, std::optional<qint64> length,
                         const QByteArray &lines)
{
    Ending kind = Ending::Length;
    if (!length)
        kind = current.minorVersion > 0 ? Ending::Chunks : Ending::Close;
    writeHead({ status, std::move(fields), lines, kind, length.value_or(0) }, !current.isHead());
    if (!current.isHead())
        return true;
    m_channel.end();
    return false;
}

void Exchange::writeHead(ReplyHead head, bool more)
{
    answered = int(head.status);
    ending = head.ending;
    if (ending == Ending::Close)
        m_channel.closeAfterReply();
    head.keepAlive = m_channel.settlePersistence();
    // Only a login in the request itself keeps replies out of shared caches (RFC 9111, 3.5); and
    // who has logged out finds nothing in that of the browser.
    if (visitor.inSession)
        head.fields.push_back({ "Cache-Control", "private, no-cache" });
    head.tellsKeepAlive = current.minorVersion == 0;
    m_channel.write(headBlock(head), more);
}

void Exchange::write(const QByteArray &bytes, bool more)
{
    if (!bytes.isEmpty())
        m_channel.write(ending == Ending::Chunks ? chunk(bytes) : bytes, more);
}

void Exchange::sendFile(OpenDescriptor file, qint64 offset, qint64 count)
{
    m_channel.sendFile(std::move(file), offset, count);
}

void Exchange::end()
{
    if (ending == Ending::Chunks)
        m_channel.write(lastChunk, false);
    m_channel.end();
}

void Exchange::breakOff()
{
    m_channel.closeAfterReply();
    m_channel.end();
}

} // namespace standard

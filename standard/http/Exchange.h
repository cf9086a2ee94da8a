#pragma once

#include "files/MemoryBudget.h"
#include "server/Access.h"
#include "server/Service.h"
#include "standard/http/Channel.h"
#include "standard/http/Guard.h"
#include "standard/http/Reply.h"
#include "standard/http/Request.h"
#include "standard/http/Routes.h"

#include <memory>
#include <optional>

namespace standard {

/// What a handler works with: the request, what is served to whom, and the way to answer. One for
/// each connection, owned by its face; begun anew for each request.
class Exchange
{
public:
    /// All are borrowed and outlive it.
    Exchange(Service &service, Channel &peerChannel, const Routes &table);

    // What is asked for

    const Request &request() const { return current; }
    Service &service() const { return m_service; }
    const Channel &channel() const { return m_channel; }
    const Routes &routes() const { return m_routes; }

    /// What is served, from the beginning of the request to its end, whatever is chosen meanwhile.
    /// For a visitor who has a home that part of it. Null when it can't be opened.
    const std::shared_ptr<const Share> &share() const { return served; }

    /// Knows what must not be changed in it; null when everything may be.
    Guard *guard() const;

    /// What the request names in the share: bytes, relative to the root, which is "", without
    /// empty, "." and ".." segments, and without a "/" at its end.
    const QByteArray &path() const { return cleaned; }

    /// The same of another path that the visitor names, decoded. None when it is not for us.
    std::optional<QByteArray> pathOf(const QByteArray &named) const;

    /// The path by which its visitor asks for what stands at `path` in the share.
    QByteArray urlPath(const QByteArray &path, bool isFolder) const;

    /// By which those of all files are made; may be kept.
    UrlSpace urls() const { return { current.outside.prefix, visitor.home }; }

    /// Whether the request's path ends with a "/".
    bool namesFolder() const;

    /// Who asks, and what they may do.
    const Access &access() const { return visitor; }

    /// Why the request must not make `changes`; none when it may.
    std::optional<Refusal> refusal(const std::vector<Change> &changes) const;

    /// Whether the request may make `changes`; else the refusal is sent, and the reply is over.
    bool mayChange(const std::vector<Change> &changes);

    // The body of the request. A peer that waits to be asked for it is asked now.

    /// Reads it whole, up to `max` bytes, and gives it to `Handler::bodyReady`, perhaps before this
    /// call returns. A body that is longer or broken is refused here.
    void readBody(qint64 max);

    /// Feeds it to `sink`; the end is told to `Handler::bodySaved`, perhaps before this call
    /// returns.
    void saveBody(BodySink sink);

    /// The sink was busy and can take more.
    void goOnSaving() { m_channel.goOnReading(); }

    // The reply: one of these, once

    /// The whole reply. The length is told; a body is not sent to HEAD.
    void reply(Status status, Fields fields = {}, const QByteArray &body = {});

    /// The same with `text` as a plain text for people; what the status says when it is empty.
    void refuse(Status status, const QByteArray &text = {}, Fields fields = {});

    /// The head of a reply whose body is written in pieces; `length` is its size in bytes, none
    /// when that isn't known. `lines` are further fields, ready to be sent. False when no body is
    /// wanted (HEAD): the reply is over then.
    bool startBody(Status status, Fields fields, std::optional<qint64> length,
                   const QByteArray &lines = {});

    /// A piece of the body; the system may wait for `more` to go with it. Nothing is kept back:
    /// watch `isCongested`.
    void write(const QByteArray &bytes, bool more = true);

    /// Whether to pause until `Handler::drained`.
    bool isCongested() const { return m_channel.isCongested(); }

    /// A part of a file as a piece of the body; `Handler::fileSent` follows. The length of the
    /// body must have been told.
    void sendFile(OpenDescriptor file, qint64 offset, qint64 count);

    /// The body is whole.
    void end();

    /// The reply can't be ended as it was begun: the connection is cut off.
    void breakOff();

    /// Of the reply that was begun; 0 while there is none.
    int status() const { return answered; }

    /// Whether somebody will get an answer; clean up without one otherwise.
    bool canAnswer() const { return m_channel.canAnswer(); }

    // For the face

    void begin(Request request);

    /// The visitor is known by now; until then nothing is permitted.
    void setAccess(const Access &found);

    /// What was read by `readBody`, if that is what was going on.
    std::optional<QByteArray> takeBody();

    /// Lets go of what was kept for the request.
    void finish();

    /// And of the request itself.
    void forget();

private:
    void writeHead(ReplyHead head, bool more);

    Service &m_service;
    Channel &m_channel;
    const Routes &m_routes;
    Request current;
    std::shared_ptr<const Share> served;
    QByteArray cleaned;
    Access visitor;
    int answered = 0; ///< the status, once the reply was begun
    Ending ending = Ending::Length; ///< of the reply under way
    std::optional<QByteArray> collected; ///< while a body is read whole
    std::optional<MemoryBudget::Part> bodyMemory; ///< for the same, until the reply is over
};

} // namespace standard

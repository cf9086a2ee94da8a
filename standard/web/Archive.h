#pragma once

#include "files/DiskJob.h"
#include "files/ZipLayout.h"
#include "server/Places.h"
#include "standard/http/Ranges.h"
#include "standard/http/Resource.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

class ZipPlan;
class ZipReader;

namespace standard {

/// A folder as a zip archive, by GET, HEAD, or, of some of its entries, by POST of a form with
/// their names. Made while it is sent, but of a length that is known before; a file that changes
/// meanwhile ends the connection.
class Archive final : public ResourceHandler, private PassTaker
{
public:
    static constexpr auto parameter = "archive";

    using ResourceHandler::ResourceHandler;
    ~Archive() override { stop(); }

    void start() override;
    void bodyReady(const QByteArray &form) override;
    void drained() override;
    void fileSent() override;
    void ended() override { stop(); }
    std::optional<qint64> bytesLeft() const override { return unsent; }

private:
    using Names = std::optional<std::vector<QByteArray>>;

    enum class State {
        Idle,
        Waiting, ///< to be let look for what it is to hold
        Planning,
        Reading, ///< the next piece
        Resting ///< with one, until the client took those before
    };

    void plan(Names names);
    void take(Pass given) override;
    void stopWaiting();
    void refuseForNow();
    void attempt(State needed, void (Archive::*step)());
    void planned();
    void sendWanted(const Validators &current, Fields fields);
    void send(Status status, Fields fields, const ByteRange &range);
    QByteArray fileName() const;
    void readOn();
    void pieceRead();
    void sendPiece();
    void stop();

    State state = State::Idle;
    std::shared_ptr<ZipPlan> search;
    std::shared_ptr<const ZipLayout> layout;
    std::shared_ptr<ZipReader> reader;
    Pass pass;
    bool sendsFile = false; ///< a part of one
    std::optional<qint64> unsent; ///< bytes, once it is sent; not those of that part
};

} // namespace standard

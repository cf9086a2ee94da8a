#pragma once

#include "server/Face.h"
#include "server/LoginGate.h"
#include "standard/http/Authenticator.h"
#include "standard/http/Channel.h"
#include "standard/http/Exchange.h"
#include "standard/http/Routes.h"

#include <QObject>

#include <memory>
#include <optional>

namespace standard {

class Handler;

/// What all faces of a program share.
struct FaceCommon
{
    Routes routes;
    Authenticator authenticator = {};
};

/// The standard face: admits requests and has the handler of their method answer, as the RFCs say.
class StandardFace final : public Face, private Channel::User
{
public:
    StandardFace(Connection &owner, std::shared_ptr<FaceCommon> shared);
    ~StandardFace() override;

    void readable() override;
    void writable() override;
    void gone() override { channel.gone(); }
    Awaits awaits() const override { return channel.awaits(); }
    void expire() override { channel.expire(); }
    std::optional<FileTransfer> transfer() const override;

private:
    void requestReady(Request request) override;
    void requestBad(Status status) override;
    void bodyEnded(BodyEnd end) override;
    void drained() override;
    void fileSent() override;
    void peerStopped() override;
    void replyEnded() override;

    void bodySaved(BodyEnd end);
    bool isMisdirected() const;
    bool isWelcome();
    bool isCrossSite() const;
    bool standsForItself() const;
    void logIn();
    bool goesOnInSession();
    void checkPassword(const Authenticator::Result &login);
    void decide(const Authenticator::Result &login);
    void refuseLogin(Authenticator::Outcome outcome);
    bool isOfPage() const;
    void dispatch();
    void refuseMethod();
    void dropHandler();
    void noteEnd(bool wasAnswering);
    Deed upload(const QByteArray &path) const;
    Deed deed(std::optional<qint64> unsent) const;

    Connection &connection;
    std::shared_ptr<FaceCommon> common;
    Channel channel;
    Exchange exchange;
    LoginGate gate;
    std::unique_ptr<const LoginSessions::Use> session; ///< of the request; null without one
    QByteArray proven; ///< of the password that the connection brought last
    bool isAtDoor = false; ///< the request waits to be let in
    bool isAnswering = false; ///< the handler has not ended
    std::unique_ptr<QObject> checking; ///< while nobody knows whether the password fits
    std::unique_ptr<Handler> handler;
};

/// Makes faces that answer by `routes`.
FaceMaker standardFaces(Routes routes);

} // namespace standard

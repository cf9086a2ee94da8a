#pragma once

#include "net/DescriptorSocket.h"
#include "net/TlsContext.h"

#include <functional>
#include <memory>

struct bio_st;

/// What is sent to a peer whose first byte begins no handshake, made of the head that it sends;
/// nothing, or that, and the connection ends.
using PlainAnswer = std::function<QByteArray(const QByteArray &head)>;

/// An encrypted connection. What the system does not take stays encrypted in the queue, and no more
/// is encrypted then.
class TlsSocket final : public DescriptorSocket
{
public:
    /// As its base; answers the handshake as a server by `identity`.
    TlsSocket(FileDescriptor accepted, const QHostAddress &peerAddress,
              std::shared_ptr<TlsContext> identity, PlainAnswer answer, Poller *watcher,
              TrafficAccount *counter);

    /// Nothing can be encrypted before both ends agreed.
    bool canSend() const override { return isEstablished() && DescriptorSocket::canSend(); }
    bool isEncrypted() const override { return true; }
    bool isEstablished() const override { return stage == Stage::Established; }

    /// How the TLS library receives and sends for the socket that `bio` carries.
    static int readCipher(bio_st *bio, char *data, int size);
    static int writeCipher(bio_st *bio, const char *data, int size);

private:
    enum class Stage {
        Greeting, ///< the peer has yet to show what it speaks
        Handshake,
        Established,
    };

    bool mayReceive() const override;
    qint64 receive(char *data, qint64 max) override;
    bool send(const QByteArray &bytes, bool more) override;
    qint64 send(int file, qint64 offset, qint64 count) override;
    void establish() override;
    void takeLeave() override;
    bool greet();
    void answerPlain(const QByteArray &head);
    void shakeHands();
    void encrypt(const char *data, qint64 size, bool more);
    void readFailed(int result);

    std::shared_ptr<TlsContext> context;
    PlainAnswer plainAnswer;
    TlsSession session;
    Stage stage = Stage::Greeting;
    bool moreFollows = false; ///< behind what is being encrypted
    bool mayDecrypt = false; ///< what came in may hold more than was read
    bool inputOver = false;
    bool leaveTaken = false;
};

#pragma once

#include "classic/http/Admission.h"
#include "classic/http/Exchange.h"
#include "classic/http/Routes.h"
#include "files/MemoryBudget.h"
#include "server/Face.h"

#include <memory>
#include <optional>

class Responder;

/// The classic face: reads requests as this server's clients have always sent them, admits them
/// and has the responder of their route answer.
class ClassicFace final : public Face, private Channel::User
{
public:
    /// What all connections share.
    struct Common
    {
        explicit Common(Routes table);

        const Routes routes;
        BufferPool heads;
    };

    ClassicFace(Connection &owner, std::shared_ptr<Common> shared);
    ~ClassicFace() override;

    void readable() override { channel.readable(); }
    void writable() override { channel.writable(); }
    void gone() override;
    Awaits awaits() const override { return channel.awaits(); }
    void expire() override { channel.expire(); }
    std::optional<FileTransfer> transfer() const override;

private:
    void headReady() override;
    void headRestReady(bool whole) override;
    void formReady(const QByteArray &form) override;
    void partHeadReady(const QByteArray &lines) override;
    void uploadEnded(SaveResult result) override;
    void drained() override;
    void replyEnded() override;

    void takeSession();
    void endRequest();
    void examine();
    const char *reasonToRefuse() const;
    void refuse(const char *status);
    void readForm();
    void decide(Admission::Verdict verdict);
    void answer();
    void refuseLogin();
    void dispatch();
    void noteEnd();
    const Route *findRoute() const;
    Responder &responder(const Route &route);

    Connection &connection;
    std::shared_ptr<Common> common;
    Channel channel;
    Exchange exchange;
    Admission admission;
    std::optional<MemoryBudget::Part> formMemory; ///< while a form is read and answered
    const Route *kept = nullptr; ///< whose responder is kept
    std::unique_ptr<Responder> current;
};

/// Makes faces that answer by `routes`.
FaceMaker classicFaces(Routes routes);

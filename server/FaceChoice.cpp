#include "server/FaceChoice.h"

#include "config/Profile.h"
#include "server/Connection.h"
#include "server/KnownAgents.h"
#include "server/Service.h"

#include <QByteArray>

#include <array>
#include <utility>

namespace {

/// As much of a head as the classic face sees.
constexpr int maxHead = 2048;

struct Faces
{
    FaceMaker classic;
    FaceMaker standard;
};

enum class Choice { NotYet, Classic, Standard };

/// By the complete lines of a head that may go on.
Choice choiceBy(const QByteArray &head)
{
    static const QByteArray field = QByteArrayLiteral("user-agent:");
    int start = 0;
    for (int end = int(head.indexOf('\n')); end >= 0; end = int(head.indexOf('\n', start))) {
        const QByteArray line = head.mid(start, end - start).trimmed();
        start = end + 1;
        if (line.isEmpty())
            return Choice::Classic;
        if (qstrnicmp(line.constData(), field.constData(), uint(field.size())) == 0) {
            return needsStandardFace(line.mid(field.size()).trimmed()) ? Choice::Standard
                                                                       : Choice::Classic;
        }
    }
    return head.size() < maxHead ? Choice::NotYet : Choice::Classic;
}

/// Collects the first head of a connection until it tells whose it is; from then on the face that
/// was chosen does everything.
class FaceChoice final : public Face
{
public:
    FaceChoice(Connection &owner, std::shared_ptr<const Faces> offered)
        : connection(owner)
        , faces(std::move(offered))
    {
    }

    void readable() override { chosen ? chosen->readable() : collect(); }

    void writable() override
    {
        if (chosen)
            chosen->writable();
    }

    void gone() override
    {
        if (chosen)
            chosen->gone();
    }

    Awaits awaits() const override
    {
        if (chosen)
            return chosen->awaits();
        return head.isEmpty() ? Awaits::Request : Awaits::Head;
    }

    void expire() override { chosen ? chosen->expire() : connection.drop(); }

    std::optional<FileTransfer> transfer() const override
    {
        return chosen ? chosen->transfer() : std::nullopt;
    }

private:
    void collect()
    {
        std::array<char, maxHead> piece;
        for (;;) {
            const qint64 size =
                connection.socket().read(piece.data(), qint64(piece.size()) - head.size());
            if (size == 0)
                return;
            // Who sent half a head and no more is told so.
            if (size < 0)
                return take(faces->classic);
            head.append(piece.data(), int(size));
            const Choice choice = choiceBy(head);
            if (choice != Choice::NotYet)
                return take(choice == Choice::Standard ? faces->standard : faces->classic);
        }
    }

    void take(const FaceMaker &make)
    {
        connection.socket().putBack(std::exchange(head, {}));
        chosen = make(connection);
        chosen->readable();
    }

    Connection &connection;
    const std::shared_ptr<const Faces> faces;
    QByteArray head;
    std::unique_ptr<Face> chosen;
};

} // namespace

FaceMaker chosenFaces(FaceMaker classic, FaceMaker standard)
{
    const auto faces =
        std::make_shared<const Faces>(Faces{ std::move(classic), std::move(standard) });
    return [faces](Connection &connection) -> std::unique_ptr<Face> {
        switch (connection.service().profile->faceMode) {
        case FaceClassic:
            return faces->classic(connection);
        case FaceStandard:
            return faces->standard(connection);
        default:
            return std::make_unique<FaceChoice>(connection, faces);
        }
    };
}

#include "server/FaceChoice.h"

#include "config/Profile.h"
#include "server/Connection.h"
#include "server/KnownAgents.h"
#include "server/Service.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int pieceSize = 2048; ///< bytes, most heads fit
constexpr int longestMethod = 32; ///< bytes, twice as many as any has

struct Faces
{
    FaceMaker classic;
    FaceMaker standard;
};

enum class Choice { NotYet, Classic, Standard };

bool isMethodByte(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
}

/// Whether a head may begin like this. Of anything else no more is waited for.
bool mayBeHead(const QByteArray &begin)
{
    const auto end = std::find_if_not(begin.begin(), begin.end(), isMethodByte);
    if (end == begin.end())
        return begin.size() <= longestMethod;
    return end != begin.begin() && *end == ' ';
}

/// By one line of a head, without its break.
Choice choiceBy(const QByteArray &line)
{
    static const QByteArray field = QByteArrayLiteral("user-agent:");
    if (line.isEmpty())
        return Choice::Classic;
    if (qstrnicmp(line.constData(), field.constData(), uint(field.size())) != 0)
        return Choice::NotYet;
    return needsStandardFace(line.mid(field.size()).trimmed()) ? Choice::Standard : Choice::Classic;
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
        std::array<char, pieceSize> piece;
        for (;;) {
            const qint64 room = maxHead - head.size();
            const qint64 size =
                connection.socket().read(piece.data(), std::min<qint64>(pieceSize, room));
            if (size == 0)
                return;
            // Who sent half a head and no more is told so.
            if (size < 0)
                return take(faces->classic);
            head.append(piece.data(), int(size));
            const Choice choice = choose();
            if (choice != Choice::NotYet)
                return take(choice == Choice::Standard ? faces->standard : faces->classic);
        }
    }

    /// By the lines that are complete since it was asked last.
    Choice choose()
    {
        if (decided == 0 && !mayBeHead(head))
            return Choice::Classic;
        for (int end = nextBreak(); end >= 0; end = nextBreak()) {
            const Choice choice = choiceBy(head.mid(decided, end - decided).trimmed());
            if (choice != Choice::NotYet)
                return choice;
            decided = end + 1;
        }
        return head.size() < maxHead ? Choice::NotYet : Choice::Classic;
    }

    int nextBreak() const { return int(head.indexOf('\n', decided)); }

    void take(const FaceMaker &make)
    {
        connection.socket().putBack(std::exchange(head, {}));
        chosen = make(connection);
        chosen->readable();
    }

    Connection &connection;
    const std::shared_ptr<const Faces> faces;
    QByteArray head;
    int decided = 0; ///< bytes of it that tell nothing
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

#include "files/Previews.h"

#include "files/PreviewFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto retryDelay = 60s;
/// What each preview counts at least, of the bytes kept: it limits their number.
constexpr int leastCost = 13 * 1024;
constexpr auto unfinishedName = "unfinished";

} // namespace

/// A finished preview on disk, which goes with its owner. Without a name: it could not be made.
class Previews::Preview
{
public:
    Preview(const PreviewFolder &folder, QByteArray name)
        : m_folder(folder)
        , m_name(std::move(name))
    {
    }
    ~Preview()
    {
        if (isMade())
            m_folder.remove(m_name);
    }

    bool isMade() const { return !m_name.isEmpty(); }
    QString path() const { return isMade() ? m_folder.pathOf(m_name) : QString(); }

private:
    Q_DISABLE_COPY_MOVE(Preview)

    const PreviewFolder &m_folder;
    const QByteArray m_name;
};

Previews::Previews(const QString &program, QString folder, const PreviewLimits &limits)
    : m_folder(std::move(folder))
    , finished(limits.kept)
    , waiting(limits.waiting)
    , maker(program, limits.time)
{
    connect(&maker, &PreviewMaker::ended, this, &Previews::makingEnded);
    turn.setSingleShot(true);
    connect(&turn, &QTimer::timeout, this, &Previews::makeNext);
}

Previews::~Previews() = default;

void Previews::sweep(const QString &folder)
{
    PreviewFolder::sweep(folder);
}

Previews::State Previews::want(const PictureId &id, const QByteArray &extension, PictureOpener open,
                               Urgency urgency)
{
    if (const Preview *preview = finished.object(id))
        return preview->isMade() ? State::Ready : State::Failed;
    if (picture.isOpen() && current == id)
        return State::Pending;
    if (!pause.hasExpired())
        return State::Failed;
    waiting.ask({ id, extension, std::move(open) }, urgency);
    turn.start();
    return State::Pending;
}

QString Previews::fileOf(const PictureId &id) const
{
    const Preview *preview = finished.object(id);
    return preview ? preview->path() : QString();
}

/// One picture a turn of the event loop: those that can't be opened take their time too.
void Previews::makeNext()
{
    if (picture.isOpen())
        return;
    const std::optional<PreviewJob> job = waiting.takeNext();
    if (!job)
        return;
    if (!hasFolder())
        return pauseFor(QString::fromLocal8Bit(std::strerror(errno)));
    if (openPicture(*job))
        maker.make(picture.get(), ownFolder->pathOf(unfinishedName), job->extension);
    else
        turn.start();
}

/// A folder that was removed meanwhile took its previews along.
bool Previews::hasFolder()
{
    if (ownFolder && ownFolder->exists())
        return true;
    finished.clear();
    ownFolder = PreviewFolder::make(m_folder);
    return ownFolder != nullptr;
}

bool Previews::openPicture(const PreviewJob &job)
{
    FileDescriptor opened = job.open();
    const std::optional<PictureId> id = PictureId::of(opened.get());
    if (!id)
        keep(job.id, {});
    // Whoever looks at a picture that was replaced meanwhile asks for that one.
    if (id != job.id)
        return false;
    current = job.id;
    picture = std::move(opened);
    return true;
}

void Previews::makingEnded(PreviewMaker::End end)
{
    if (end == PreviewMaker::End::NotStarted)
        return pauseFor(maker.problem());
    const bool unchanged = PictureId::of(picture.get()) == current;
    picture.reset();
    turn.start();
    if (!unchanged)
        return;
    keep(current, end == PreviewMaker::End::Made ? QByteArray::number(++made) : QByteArray());
}

/// Keeps what was written under `name`; empty: that the picture has no preview.
void Previews::keep(const PictureId &id, const QByteArray &name)
{
    const qint64 size = name.isEmpty() ? 0 : ownFolder->rename(unfinishedName, name);
    auto preview = std::make_unique<Preview>(*ownFolder, size > 0 ? name : QByteArray());
    finished.insert(id, preview.release(), int(std::max<qint64>(size, leastCost)));
}

void Previews::pauseFor(const QString &reason)
{
    picture.reset();
    waiting.clear();
    pause.setRemainingTime(retryDelay);
    if (!std::exchange(problemTold, true))
        Q_EMIT problem(QStringLiteral("Previews can't be made: %1").arg(reason));
}

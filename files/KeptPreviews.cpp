#include "files/KeptPreviews.h"

#include "files/DiskStep.h"
#include "files/DiskWorker.h"

#include <QDir>

#include <algorithm>
#include <iterator>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int mostPostponed = 16; ///< each keeps a connection

/// By all that changes with the picture; the last time is one that nobody can set.
QByteArray storedName(const EntryFacts &facts, const QByteArray &kind)
{
    QByteArray name;
    for (const qint64 part :
         { qint64(facts.device), qint64(facts.inode), facts.size, facts.seconds,
           qint64(facts.nanoseconds), facts.changeSeconds, qint64(facts.changeNanoseconds) })
        name += QByteArray::number(part) + '-';
    return name + kind;
}

KeptPreviews::Answer answerOf(int preview)
{
    return openFacts(preview).size > 0 ? KeptPreviews::Answer::Made : KeptPreviews::Answer::None;
}

} // namespace

KeptPreviews::KeptPreviews(const QString &program, const QString &folder, DiskWorker &diskWorker,
                           const KeptPreviewLimits &limits)
    : mostWaiting(limits.waiting)
    , store(folder, limits.kept)
    , disk(diskWorker)
    , maker(program, limits.time)
{
    connect(&maker, &PreviewMaker::ended, this, &KeptPreviews::makingEnded);
    turn.setSingleShot(true);
    connect(&turn, &QTimer::timeout, this, &KeptPreviews::makeNext);
    // Later, as it starts threads: nothing that is confined before has any.
    if (QDir(folder).exists())
        QTimer::singleShot(0, this, &KeptPreviews::sweep);
}

void KeptPreviews::want(const ServedFile &picture, int edge, QObject *asker, Told told)
{
    const QByteArray kind = QByteArray::number(edge);
    const QByteArray name = storedName(picture.facts, kind);
    if (FileDescriptor kept = store.find(name); kept.isOpen()) {
        const Answer answer = answerOf(kept.get());
        return told(answer, std::make_shared<const FileDescriptor>(std::move(kept)));
    }
    if (!makeRoom())
        return told(Answer::Later, {});
    const auto postponed = std::find_if(waiting.begin(), waiting.end(),
                                        [](const Wish &wish) { return wish.isPostponed; });
    waiting.insert(postponed, { name, kind, picture, asker, std::move(told) });
    turn.start();
}

void KeptPreviews::leave(const QObject *asker)
{
    waiting.erase(std::remove_if(waiting.begin(), waiting.end(),
                                 [asker](const Wish &wish) { return wish.asker == asker; }),
                  waiting.end());
    stopUnless([](const Wish &) { return true; });
}

void KeptPreviews::postpone(const QObject *asker)
{
    for (Wish &wish : waiting)
        wish.isPostponed |= wish.asker == asker;
    const auto postponed = std::stable_partition(
        waiting.begin(), waiting.end(), [](const Wish &wish) { return !wish.isPostponed; });
    if (postponed != waiting.begin())
        stopUnless([](const Wish &wish) { return !wish.isPostponed; });
    for (auto count = waiting.end() - postponed; count > mostPostponed; --count)
        refuseLast();
}

/// What is being made is made later, or never, unless somebody wants it who is a reason.
void KeptPreviews::stopUnless(const std::function<bool(const Wish &)> &isReason)
{
    const bool isWanted =
        std::any_of(waiting.begin(), waiting.end(), [this, &isReason](const Wish &wish) {
            return wish.name == current.name && isReason(wish);
        });
    if (state != State::Making || isWanted)
        return;
    state = State::GivenUp;
    maker.giveUp();
}

/// For one that waits; who most likely left gives way.
bool KeptPreviews::makeRoom()
{
    if (waiting.size() < mostWaiting)
        return true;
    if (!waiting.back().isPostponed)
        return false;
    refuseLast();
    return true;
}

void KeptPreviews::refuseLast()
{
    const Wish last = std::move(waiting.back());
    waiting.pop_back();
    if (last.asker)
        last.told(Answer::Later, {});
}

void KeptPreviews::makeNext()
{
    if (state != State::Idle || waiting.empty())
        return;
    state = State::Making;
    current = waiting.front();
    preview = std::make_shared<const FileDescriptor>(::memfd_create("preview", MFD_CLOEXEC));
    maker.make(current.picture.descriptor->get(),
               QStringLiteral("/proc/self/fd/%1").arg(preview->get()), current.kind);
}

void KeptPreviews::makingEnded(PreviewMaker::End end)
{
    if (state == State::GivenUp) {
        current = {};
        preview.reset();
        state = State::Idle;
        return turn.start();
    }
    const bool isDecided = end == PreviewMaker::End::Made || end == PreviewMaker::End::Refused;
    const EntryFacts now = openFacts(current.picture.descriptor->get());
    if (!isDecided || !isUnchanged(current.picture.facts, now))
        return tell(Answer::Later);
    // That it has none is kept too.
    if (end == PreviewMaker::End::Refused && ::ftruncate(preview->get(), 0) != 0)
        return tell(Answer::None);
    keep();
}

/// Told afterwards: who asks meanwhile would have it made anew.
void KeptPreviews::keep()
{
    state = State::Keeping;
    const auto add = [into = store, name = current.name, made = preview] {
        into.add(name, made->get());
    };
    disk.runAside(std::make_shared<DiskStep>(add), this, [this] {
        // Peers that take their time keep no memory with it.
        if (FileDescriptor kept = store.find(current.name); kept.isOpen())
            preview = std::make_shared<const FileDescriptor>(std::move(kept));
        added += PreviewStore::sizeOnDisk(openFacts(preview->get()).size);
        if (added >= store.sweepAfter())
            sweep();
        tell(answerOf(preview->get()));
    });
}

void KeptPreviews::tell(Answer answer)
{
    const auto others =
        std::stable_partition(waiting.begin(), waiting.end(),
                              [this](const Wish &wish) { return wish.name == current.name; });
    const std::vector<Wish> askers(std::make_move_iterator(waiting.begin()),
                                   std::make_move_iterator(others));
    waiting.erase(waiting.begin(), others);
    const OpenDescriptor made = std::exchange(preview, nullptr);
    current = {};
    state = State::Idle;
    turn.start();
    for (const Wish &wish : askers) {
        if (wish.asker)
            wish.told(answer, made);
    }
}

void KeptPreviews::sweep()
{
    added = 0;
    disk.runAside(std::make_shared<DiskStep>([in = store] { in.sweep(); }), nullptr, {});
}

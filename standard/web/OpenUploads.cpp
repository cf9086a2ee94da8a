#include "standard/web/OpenUploads.h"

#include "files/PartialUpload.h"
#include "files/Path.h"
#include "files/Share.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <utility>

namespace standard {

namespace {

constexpr std::chrono::minutes lookInterval{ 60 };
constexpr std::chrono::minutes longestPause{ 10 }; ///< of one whose bytes are on their way
constexpr int mostOfAll = 10000;
constexpr int mostLooks = 100;
constexpr std::size_t mostFinished = 1000;

/// Whether one is there no more. What was given up is removed.
bool isGone(const QByteArray &id, const OpenUploads::Upload &upload)
{
    const Place beside = upload.share->place(joinedPath(upload.folder, id));
    std::optional<PartialUpload> found =
        beside.isValid() ? PartialUpload::find(beside, id) : std::nullopt;
    const bool isGivenUp = found && found->isGivenUp();
    if (isGivenUp && upload.disk)
        upload.disk->run(PartialUpload::removal(std::make_shared<PartialUpload>(std::move(*found))),
                         nullptr, {});
    return !found || isGivenUp;
}

} // namespace

OpenUploads::OpenUploads()
{
    timer.setInterval(lookInterval);
    connect(&timer, &QTimer::timeout, this, &OpenUploads::expire);
}

int OpenUploads::countOf(const QByteArray &visitor) const
{
    return int(std::count_if(open.begin(), open.end(), [&visitor](const auto &entry) {
        return entry.second->visitor == visitor;
    }));
}

/// A folder may have been removed with all that was on its way there.
bool OpenUploads::mayBegin(const QByteArray &visitor)
{
    if (countOf(visitor) >= mostOfVisitor)
        forgetGone([&visitor](const Upload &upload) { return upload.visitor == visitor; });
    if (int(open.size()) >= mostOfAll)
        forgetSomeGone();
    return int(open.size()) < mostOfAll && countOf(visitor) < mostOfVisitor;
}

qint64 OpenUploads::promised(dev_t device) const
{
    const Clock::time_point since = Clock::now() - longestPause;
    qint64 bytes = 0;
    for (const auto &[id, upload] : open) {
        if (upload->device == device && upload->lastByte && *upload->lastByte >= since)
            bytes += upload->left;
    }
    return bytes;
}

std::shared_ptr<OpenUploads::Upload> OpenUploads::enter(const QByteArray &id, const Upload &upload)
{
    std::shared_ptr<Upload> &known = open[id];
    if (!known)
        known = std::make_shared<Upload>(upload);
    if (!timer.isActive())
        timer.start();
    return known;
}

void OpenUploads::finish(const QByteArray &id, const QByteArray &owner, qint64 length)
{
    leave(id);
    finished.push_back({ id, owner, length });
    if (finished.size() > mostFinished)
        finished.pop_front();
}

std::optional<qint64> OpenUploads::finishedLength(const QByteArray &id,
                                                  const QByteArray &owner) const
{
    for (const Finished &each : finished) {
        if (each.id == id && each.owner == owner)
            return each.length;
    }
    return {};
}

void OpenUploads::expire()
{
    const qint64 now = ::time(nullptr);
    forgetGone([now](const Upload &upload) { return upload.expires <= now; });
    if (open.empty())
        timer.stop();
}

void OpenUploads::forgetGone(const std::function<bool(const Upload &)> &isSuspect)
{
    for (auto entry = open.begin(); entry != open.end();) {
        const auto &[id, upload] = *entry;
        entry = isSuspect(*upload) && isGone(id, *upload) ? open.erase(entry) : std::next(entry);
    }
}

/// The next ones in turn: to look at all of them would take the disk too long.
void OpenUploads::forgetSomeGone()
{
    for (int looks = 0; looks < mostLooks && !open.empty(); ++looks) {
        auto entry = open.upper_bound(lookedAt);
        if (entry == open.end())
            entry = open.begin();
        lookedAt = entry->first;
        if (isGone(entry->first, *entry->second))
            open.erase(entry);
    }
}

} // namespace standard

#include "standard/dav/PropFindJob.h"

#include "files/HiddenUploads.h"
#include "files/Share.h"
#include "standard/http/MultiStatus.h"
#include "standard/http/Reserved.h"
#include "standard/http/Resource.h"
#include "standard/http/Uri.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <dirent.h>
#include <fcntl.h>

namespace standard {

namespace {

constexpr std::size_t maxSeen = 256; ///< entries
constexpr std::chrono::seconds longestSince{ 1 }; ///< an entry was looked at, to tell it
constexpr int spareBytes = 4 * 1024; ///< for the entry that makes a piece whole

/// Whether clients can be told of that name: XML holds neither most controls nor what is no text.
bool isTellable(const char *name)
{
    const auto isPlain = [](char c) { return c >= ' '; };
    const std::size_t size = std::strlen(name);
    if (std::all_of(name, name + size, isPlain))
        return true;
    const QString text = QString::fromUtf8(name, int(size));
    return isXmlText(text) && text.toUtf8() == QByteArray::fromRawData(name, int(size));
}

} // namespace

PropFindJob::PropFindJob(Subject asked, PropertyReport answer)
    : subject(std::move(asked))
    , report(std::move(answer))
    , folders(subject.memory)
{
}

/// On a thread nobody else ends what gets no memory.
bool PropFindJob::run(const Budget &until)
{
    try {
        return makePiece(until);
    } catch (const std::bad_alloc &) {
        fail(ENOMEM);
    }
    return true;
}

bool PropFindJob::makePiece(const Budget &until)
{
    if (subject.depth != Depth::Zero)
        text.reserve(pieceBytes + spareBytes);
    if (!batch.isTold() && Budget::Clock::now() > batch.at + longestSince)
        lookAgain();
    do
        step(until);
    while (!isAtEnd() && text.size() < pieceBytes && !until.isUsedUp());
    return isAtEnd() || text.size() >= pieceBytes || isOverdue();
}

/// A search that finds nothing is told of too: who has left shows only by what is sent to them.
bool PropFindJob::isOverdue()
{
    if (subject.part.isEmpty() || Budget::Clock::now() < takenAt + subject.longestSilence)
        return false;
    if (text.isEmpty())
        text = "\n";
    return true;
}

void PropFindJob::step(const Budget &until)
{
    if (state == State::Begin)
        return begin();
    if (!batch.isTold())
        return tellSeen();
    if (!folder)
        return openNext();
    if (look(until))
        return;
    const int number = folder->error();
    folder.reset();
    if (number == ENOENT) // removed since
        tell(here.inShare, statusOf(number));
    else if (number != 0)
        fail(number);
}

void PropFindJob::begin()
{
    text = rootStart("multistatus");
    state = State::Folders;
    DavResource top = subject.top;
    if (top.facts.folder && subject.depth != Depth::Zero
        && !enter({ top.path.isEmpty() ? std::string() : top.path.toStdString() + '/', nullptr }))
        return fail(errno);
    const FileDescriptor place = subject.share->open(top.path, O_PATH | O_CLOEXEC);
    top.subject = { systemPathOf(place.get()), top.path };
    top.isAlone = subject.depth == Depth::Zero;
    append(top);
}

void PropFindJob::openNext()
{
    if (folders.isEmpty()) {
        text += rootEnd("multistatus");
        state = State::Ended;
        return;
    }
    const FolderQueue::Next next = folders.take();
    if (state == State::CutOff)
        return tell(next.path(), Status::InsufficientStorage);
    if (!enter(next))
        tell(here.inShare, statusOf(errno));
}

/// Begins to read a folder. False, with `errno`, when it can't be.
bool PropFindJob::enter(const FolderQueue::Next &next)
{
    here.inShare = next.path();
    folder = subject.share->openFolder(here.inShare);
    if (!folder)
        return false;
    here.url = urlPath(subject.urls, here.inShare, false).toStdString();
    here.onDisk = systemPathOf(folder->descriptor()) + '/';
    if (!folders.enter(next, openFacts(folder->descriptor())))
        folder.reset();
    return true;
}

/// A client that took a folder for empty, or read to its end, might remove what it has of it.
void PropFindJob::tell(const QByteArray &unread, Status status)
{
    text += "<D:response>" + href(urlPath(subject.urls, unread, false)) + statusElement(status)
        + "</D:response>";
}

void PropFindJob::fail(int number)
{
    failure = number;
    state = State::Ended;
}

bool PropFindJob::isReservedHere(const char *name) const
{
    return std::strcmp(name, reservedName) == 0
        && isReserved(subject.urls.home, here.inShare + name);
}

/// Looks at the next entries, if any are to be told. False at the end of the folder.
bool PropFindJob::look(const Budget &until)
{
    batch.seen.clear();
    batch.names.clear();
    batch.told = 0;
    batch.at = Budget::Clock::now();
    FolderReader::Item item;
    do {
        if (!folder->next(item))
            return !batch.seen.empty();
        if (subject.depth == Depth::Infinity && ++looks > subject.mostLooks) {
            cutOff();
            return true;
        }
        if (isHiddenUpload(item.name) || !isTellable(item.name) || isReservedHere(item.name))
            continue;
        batch.seen.push_back({ batch.names.size(), folder->facts(item) });
        batch.names.append(item.name).push_back('\0');
    } while (batch.seen.size() < maxSeen && !until.isUsedUp());
    return true;
}

/// The client has waited: what is told next may have changed, or gone.
void PropFindJob::lookAgain()
{
    for (std::size_t i = batch.told; i < batch.seen.size(); ++i)
        batch.seen[i].facts =
            folder->facts({ batch.names.data() + batch.seen[i].name, DT_UNKNOWN, 0 });
    batch.at = Budget::Clock::now();
}

/// In a row, unless what is asked needs the disk again.
void PropFindJob::tellSeen()
{
    do
        append(batch.seen[batch.told++]);
    while (!batch.isTold() && text.size() < pieceBytes && !report.needsPaths());
}

void PropFindJob::append(const Seen &found)
{
    if (!found.facts.file && !(found.facts.folder && subject.withFolders))
        return;
    const char *name = batch.names.data() + found.name;
    const bool isBelow = found.facts.folder && subject.depth == Depth::Infinity;
    const bool isWanted = hasPart(name);
    if (!isWanted && !isBelow)
        return;
    if (subject.depth == Depth::Infinity && count == subject.mostBelow)
        return cutOff();
    ++count;
    if (isWanted)
        append(name, found.facts);
    if (isBelow && !folders.add(name))
        cutOff();
}

bool PropFindJob::hasPart(const char *name) const
{
    return subject.part.isEmpty()
        || QString::fromUtf8(name).contains(subject.part, Qt::CaseInsensitive);
}

void PropFindJob::append(const char *name, const EntryFacts &facts)
{
    entry.name = name;
    entry.facts = facts;
    entry.href = here.url;
    addEncoded(entry.href, entry.name);
    if (entry.facts.folder)
        entry.href += '/';
    if (report.needsPaths())
        locate(name, facts.link);
    append(entry);
}

/// Says where the properties of the entry are that its facts don't tell.
void PropFindJob::locate(const char *name, bool isLink)
{
    entry.path = here.inShare + name;
    linked = isLink ? subject.share->open(entry.path, O_PATH | O_CLOEXEC) : FileDescriptor();
    entry.subject = { isLink ? systemPathOf(linked.get()) : here.onDisk + name, entry.path,
                      !isLink };
}

void PropFindJob::append(const DavResource &resource)
{
    line.clear();
    report.append(line, resource);
    text.append(line.data(), int(line.size()));
}

/// The rest of the folder is missing, and all of those that were to follow.
void PropFindJob::cutOff()
{
    tell(here.inShare, Status::InsufficientStorage);
    folder.reset();
    batch.seen.clear();
    state = State::CutOff;
}

} // namespace standard

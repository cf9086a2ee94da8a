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
constexpr int pieceBytes = 256 * 1024;
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
    if (told < seen.size() && Budget::Clock::now() > lookedAt + longestSince)
        lookAgain();
    do
        step(until);
    while (!isAtEnd() && text.size() < pieceBytes && !until.isUsedUp());
    return isAtEnd() || text.size() >= pieceBytes;
}

void PropFindJob::step(const Budget &until)
{
    if (state == State::Begin)
        return begin();
    if (told < seen.size())
        return tellSeen();
    if (!folder)
        return openNext();
    if (look(until))
        return;
    const int number = folder->error();
    folder.reset();
    if (number == ENOENT) // removed since
        tell(path, statusOf(number));
    else if (number != 0)
        fail(number);
}

void PropFindJob::begin()
{
    text = rootStart("multistatus");
    state = State::Folders;
    DavResource top = subject.top;
    if (top.facts.folder && subject.depth != Depth::Zero
        && !enter({ top.path.isEmpty() ? top.path : top.path + '/', nullptr }))
        return fail(errno);
    const FileDescriptor place = subject.share->open(top.path, O_PATH | O_CLOEXEC);
    top.subject = { systemPathOf(place.get()), top.path };
    top.isAlone = subject.depth == Depth::Zero;
    append(top);
}

void PropFindJob::openNext()
{
    if (folders.empty()) {
        text += rootEnd("multistatus");
        state = State::Ended;
        return;
    }
    const Pending next = std::move(folders.front());
    folders.pop_front();
    if (state == State::CutOff)
        return tell(next.path, Status::InsufficientStorage);
    if (!enter(next))
        tell(next.path, statusOf(errno));
}

/// Begins to read a folder. False, with `errno`, when it can't be.
bool PropFindJob::enter(const Pending &next)
{
    folder = subject.share->openFolder(next.path);
    if (!folder)
        return false;
    path = next.path;
    url = urlPath(subject.urls, path, false).toStdString();
    systemPath = systemPathOf(folder->descriptor()) + '/';
    const EntryFacts facts = openFacts(folder->descriptor());
    for (const Ancestor *each = next.above.get(); each; each = each->above.get()) {
        if (each->device == facts.device && each->inode == facts.inode)
            folder.reset();
    }
    entered = std::make_shared<Ancestor>(Ancestor{ facts.device, facts.inode, next.above });
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
    return std::strcmp(name, reservedName) == 0 && isReserved(subject.urls.home, path + name);
}

/// Looks at the next entries, if any are to be told. False at the end of the folder.
bool PropFindJob::look(const Budget &until)
{
    seen.clear();
    names.clear();
    told = 0;
    lookedAt = Budget::Clock::now();
    FolderReader::Item item;
    do {
        if (!folder->next(item))
            return !seen.empty();
        if (isHiddenUpload(item.name) || !isTellable(item.name) || isReservedHere(item.name))
            continue;
        seen.push_back({ names.size(), folder->facts(item) });
        names.append(item.name).push_back('\0');
    } while (seen.size() < maxSeen && !until.isUsedUp());
    return true;
}

/// The client has waited: what is told next may have changed, or gone.
void PropFindJob::lookAgain()
{
    for (std::size_t i = told; i < seen.size(); ++i)
        seen[i].facts = folder->facts({ names.data() + seen[i].name, DT_UNKNOWN, 0 });
    lookedAt = Budget::Clock::now();
}

/// In a row, unless what is asked needs the disk again.
void PropFindJob::tellSeen()
{
    do
        append(seen[told++]);
    while (told < seen.size() && text.size() < pieceBytes && !report.needsPaths());
}

void PropFindJob::append(const Seen &found)
{
    if (!found.facts.file && !(found.facts.folder && subject.withFolders))
        return;
    const char *name = names.data() + found.name;
    const bool isBelow = found.facts.folder && subject.depth == Depth::Infinity;
    const bool isWanted = hasPart(name);
    if (!isWanted && !isBelow)
        return;
    if (subject.depth == Depth::Infinity && count == subject.mostBelow)
        return cutOff();
    ++count;
    if (isWanted)
        append(name, found.facts);
    if (isBelow)
        folders.push_back({ path + name + '/', entered });
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
    entry.href = url;
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
    entry.path = path + name;
    linked = isLink ? subject.share->open(entry.path, O_PATH | O_CLOEXEC) : FileDescriptor();
    entry.subject = { isLink ? systemPathOf(linked.get()) : systemPath + name, entry.path,
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
    tell(path, Status::InsufficientStorage);
    folder.reset();
    seen.clear();
    state = State::CutOff;
}

} // namespace standard

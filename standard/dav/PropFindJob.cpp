#include "standard/dav/PropFindJob.h"

#include "files/HiddenUploads.h"
#include "files/Share.h"
#include "standard/dav/MultiStatus.h"
#include "standard/http/Uri.h"

#include <algorithm>
#include <cstring>

#include <fcntl.h>

namespace standard {

namespace {

constexpr int pieceBytes = 64 * 1024;
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

bool PropFindJob::run(const Budget &until)
{
    text.reserve(pieceBytes + spareBytes);
    do
        step();
    while (!isAtEnd() && text.size() < pieceBytes && !until.isUsedUp());
    return isAtEnd() || text.size() >= pieceBytes;
}

void PropFindJob::step()
{
    if (state == State::Begin)
        return begin();
    FolderReader::Item item;
    if (folder && folder->next(item))
        return append(item);
    folder.reset();
    openNext();
}

void PropFindJob::begin()
{
    text = rootStart("multistatus");
    state = State::Folders;
    DavResource top = subject.top;
    const FileDescriptor place = subject.share->open(top.path, O_PATH | O_CLOEXEC);
    top.subject = { systemPathOf(place.get()), top.path };
    top.isAlone = subject.depth == Depth::Zero;
    report.append(text, top);
    if (top.facts.folder && subject.depth != Depth::Zero)
        folders.push_back(top.path.isEmpty() ? top.path : top.path + '/');
}

/// Goes on with the next folder; those that can't be read are told to be empty.
void PropFindJob::openNext()
{
    if (folders.empty()) {
        text += rootEnd("multistatus");
        state = State::Ended;
        return;
    }
    path = folders.front();
    folders.pop_front();
    folder = subject.share->openFolder(path);
    if (!folder)
        return;
    url = urlPath(subject.urls, path, false);
    systemPath = systemPathOf(folder->descriptor()) + '/';
    const EntryFacts facts = openFacts(folder->descriptor());
    if (!entered.emplace(facts.device, facts.inode).second)
        folder.reset();
}

void PropFindJob::append(const FolderReader::Item &item)
{
    if (isHiddenUpload(item.name) || !isTellable(item.name))
        return;
    DavResource entry;
    entry.facts = folder->facts(item);
    if (!entry.facts.file && !(entry.facts.folder && subject.withFolders))
        return;
    if (subject.depth == Depth::Infinity && count == subject.mostBelow)
        return cutOff();
    ++count;
    entry.name = item.name;
    entry.href = url + encodedPath(entry.name);
    if (entry.facts.folder)
        entry.href += '/';
    if (report.needsPaths()) {
        entry.path = path + entry.name;
        entry.subject = { systemPath + entry.name, entry.path };
    }
    report.append(text, entry);
    if (entry.facts.folder && subject.depth == Depth::Infinity)
        folders.push_back(path + entry.name + '/');
}

/// Tells that the rest of the folder, and of what was to follow, is missing.
void PropFindJob::cutOff()
{
    text += "<D:response><D:href>" + url + "</D:href>" + statusElement(Status::InsufficientStorage)
        + "</D:response>";
    folder.reset();
    folders.clear();
}

} // namespace standard

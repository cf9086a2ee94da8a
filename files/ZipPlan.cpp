#include "files/ZipPlan.h"

#include "files/HiddenUploads.h"
#include "files/Path.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>

namespace {

/// Whether there is an entry of which nothing can be told for now: an archive without it would lack
/// what there is.
bool isLacking(int error)
{
    constexpr std::array errors{ EIO, ENOMEM, EMFILE, ENFILE, ESTALE, ENAMETOOLONG };
    return std::find(errors.begin(), errors.end(), error) != errors.end();
}

} // namespace

ZipPlan::ZipPlan(Subject asked)
    : subject(std::move(asked))
    , memory(std::make_unique<MemoryBudget::Part>(subject.memory, 0))
{
}

/// On a thread nobody else ends what gets no memory.
bool ZipPlan::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    try {
        do
            step();
        while (!ended && !until.isUsedUp());
    } catch (const std::bad_alloc &) {
        fail(ENOMEM);
    }
    return ended;
}

void ZipPlan::abandon()
{
    folder.reset();
    entries = {};
    maker.reset();
    memory.reset();
}

void ZipPlan::step()
{
    if (!begun)
        return begin();
    if (folder)
        return readNext();
    if (subject.names && nextName < subject.names->size())
        return takeName((*subject.names)[nextName++]);
    if (maker) {
        ended = maker->placeNext();
        return;
    }
    if (next < entries.size())
        return enterNext();
    maker.emplace(std::move(entries), above.front().seconds, std::move(memory));
}

void ZipPlan::begin()
{
    begun = true;
    folder = subject.share->openFolder(subject.folder);
    if (!folder)
        return fail(errno);
    above.push_back(openFacts(folder->descriptor()));
    for (QByteArray path = subject.folder; !path.isEmpty();) {
        path = parentPath(path);
        above.push_back(subject.share->facts(path));
    }
    if (subject.names)
        folder.reset();
}

void ZipPlan::takeName(const QByteArray &name)
{
    const EntryFacts found = subject.share->facts(joinedPath(subject.folder, name));
    if (name == subject.leftOut || (!found.file && !found.folder))
        return fail(ENOENT);
    if (!found.readable)
        return fail(EACCES);
    keep(name.toStdString(), found);
}

void ZipPlan::readNext()
{
    FolderReader::Item item;
    if (!folder->next(item)) {
        const int number = folder->error();
        folder.reset();
        // What was removed since holds nothing.
        return number != 0 && number != ENOENT ? fail(number) : void();
    }
    if (isHiddenUpload(item.name) || (within == 0 && item.name == subject.leftOut))
        return;
    errno = 0;
    const EntryFacts found = folder->facts(item);
    if (!found.exists && isLacking(errno))
        return fail(errno);
    if (!(found.file || found.folder) || !found.readable || leadsBack(found))
        return;
    keep(item.name, found);
}

bool ZipPlan::leadsBack(const EntryFacts &facts) const
{
    if (!facts.folder)
        return false;
    for (std::size_t each = within; each != 0; each = entries[each - 1].folder) {
        if (isSameEntry(entries[each - 1].facts, facts))
            return true;
    }
    return std::any_of(above.begin(), above.end(),
                       [&facts](const EntryFacts &each) { return isSameEntry(each, facts); });
}

void ZipPlan::keep(std::string name, const EntryFacts &facts)
{
    if (entries.size() == maxEntries)
        return fail(E2BIG);
    if (facts.folder)
        name += '/';
    entries.push_back({ std::move(name), facts, within });
    bytes += ZipLayout::memoryOf(entries.back());
    if (!memory->resize(bytes))
        fail(ENOBUFS);
}

/// One that is gone, or closed to us, stays empty.
void ZipPlan::enterNext()
{
    const ZipEntry &entry = entries[next++];
    within = next;
    if (!entry.facts.folder)
        return;
    folder = subject.share->openFolder(joinedPath(subject.folder, zipPath(entries, entry)));
    if (!folder && isLacking(errno))
        fail(errno);
}

void ZipPlan::fail(int number)
{
    abandon();
    failure = number;
    ended = true;
}

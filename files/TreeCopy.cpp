#include "files/TreeCopy.h"

#include "files/Path.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

constexpr std::size_t batchOutcomes = 256;

} // namespace

TreeCopy::TreeCopy(std::shared_ptr<const Share> shared, const QByteArray &path,
                   Share::Links linksFollowed, Begin beginCopy)
    : share(std::move(shared))
    , links(linksFollowed)
    , begin(std::move(beginCopy))
{
    pending.push_back({ cleanPath(path), {}, true });
}

bool TreeCopy::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    while (!isAtEnd() && outcomes.size() < batchOutcomes) {
        step(until);
        if (until.isUsedUp())
            return until.isCancelled() || isAtEnd();
    }
    return true;
}

void TreeCopy::step(const Budget &until)
{
    if (copy) {
        if (!copy->run(until))
            return;
        outcomes.push_back({ current, copy->error() });
        copy.reset();
        return;
    }
    if (folder)
        return read(until);
    const Found next = std::move(pending.back());
    pending.pop_back();
    if (next.folder)
        open(next.path);
    else
        copyFile(next.path);
}

void TreeCopy::open(const QByteArray &path)
{
    current = path;
    folder = share->openFolder(path, links);
    if (!folder)
        return;
    const EntryFacts facts = openFacts(folder->descriptor());
    if (!entered.insert({ facts.device, facts.inode }).second)
        folder.reset();
}

void TreeCopy::read(const Budget &until)
{
    FolderReader::Item item;
    while (folder->next(item)) {
        keep(item);
        if (until.isUsedUp())
            return;
    }
    folder.reset();
    std::sort(found.begin(), found.end(), [](const Found &a, const Found &b) {
        return a.key != b.key ? a.key > b.key : a.path > b.path;
    });
    std::move(found.begin(), found.end(), std::back_inserter(pending));
    found.clear();
}

void TreeCopy::keep(const FolderReader::Item &item)
{
    const QByteArray name(item.name);
    if (name.startsWith('.') || !isSpellable(name))
        return;
    const EntryFacts facts = folder->facts(item);
    if (!facts.file && !facts.folder)
        return;
    const QByteArray path = current.isEmpty() ? name : current + '/' + name;
    found.push_back({ path, QFile::decodeName(name).toLower(), facts.folder });
}

void TreeCopy::copyFile(const QByteArray &path)
{
    current = path;
    std::optional<OpenFile> file = share->openFile(path, links);
    if (!file) {
        outcomes.push_back({ path, DiskError::Failed });
        return;
    }
    copy = begin(path, std::move(*file));
    if (!copy)
        outcomes.push_back({ path, DiskError::Exists });
}

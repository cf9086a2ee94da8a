#include "files/TreeCopy.h"

#include "files/Path.h"

#include <QFile>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t batchOutcomes = 256;

bool isAscii(const char *name)
{
    return std::all_of(name, name + std::strlen(name), [](char c) { return c > 0; });
}

int compareLetters(const char *a, const char *b)
{
    return isAscii(a) && isAscii(b)
        ? qstricmp(a, b)
        : QFile::decodeName(a).toLower().compare(QFile::decodeName(b).toLower());
}

/// By name in any case; of two that differ in case alone, by their bytes.
bool precedesInAnyCase(const char *a, const char *b)
{
    const int order = compareLetters(a, b);
    return order != 0 ? order < 0 : std::strcmp(a, b) < 0;
}

} // namespace

TreeCopy::TreeCopy(std::shared_ptr<const Share> shared, const QByteArray &path, Begin beginCopy)
    : share(std::move(shared))
    , begin(std::move(beginCopy))
{
    levels.push_back({ {}, cleanPath(path).toStdString(), { { 0, true } } });
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

void TreeCopy::abandon()
{
    copy.reset();
    folder.reset();
    levels = {};
    entered.clear();
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
    takeNext();
}

void TreeCopy::takeNext()
{
    Level &level = levels.back();
    const Entry entry = level.entries.back();
    const QByteArray path = joinedPath(level.path, level.names.data() + entry.name);
    level.entries.pop_back();
    if (level.entries.empty())
        levels.pop_back();
    if (entry.folder)
        open(path);
    else
        copyFile(path);
}

void TreeCopy::open(const QByteArray &path)
{
    current = path;
    folder = share->openFolder(path);
    if (!folder)
        return;
    const EntryFacts facts = openFacts(folder->descriptor());
    if (entered.insert({ facts.device, facts.inode }).second)
        levels.push_back({ path, {}, {} });
    else
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
    Level &level = levels.back();
    std::sort(level.entries.begin(), level.entries.end(),
              [names = level.names.data()](const Entry &a, const Entry &b) {
                  return precedesInAnyCase(names + b.name, names + a.name);
              });
    if (level.entries.empty())
        levels.pop_back();
}

void TreeCopy::keep(const FolderReader::Item &item)
{
    if (item.name[0] == '.' || !isSpellable(item.name))
        return;
    const EntryFacts facts = folder->facts(item);
    if (!facts.file && !facts.folder)
        return;
    Level &level = levels.back();
    level.entries.push_back({ level.names.size(), facts.folder });
    level.names.append(item.name, std::strlen(item.name) + 1);
}

void TreeCopy::copyFile(const QByteArray &path)
{
    current = path;
    std::optional<OpenFile> file = share->openFile(path);
    if (!file) {
        outcomes.push_back({ path, DiskError::Failed });
        return;
    }
    copy = begin(path, std::move(*file));
    if (!copy)
        outcomes.push_back({ path, DiskError::Exists });
}

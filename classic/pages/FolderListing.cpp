#include "classic/pages/FolderListing.h"

#include "server/SessionTable.h"

#include <QFile>

#include <algorithm>
#include <memory>

#include <dirent.h>

namespace {

/// By what the sort mode compares; the larger comes first.
qint64 sortKey(const EntryFacts &facts, int sortMode)
{
    switch (sortMode) {
    case SessionData::ByTime:
        return facts.modified;
    case SessionData::BySize:
        return facts.size;
    default:
        return 0;
    }
}

} // namespace

FolderListing::FolderListing(const QString &folder, QDir::Filters entryFilter, int sortMode)
    : dir(folder)
    , canonical(dir.canonicalPath())
    , filter(entryFilter)
{
    read(folder);
    sort(sortMode);
}

void FolderListing::read(const QString &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> open(
        ::opendir(QFile::encodeName(folder).constData()), &::closedir);
    if (!open)
        return;
    // Entries are looked at from the open folder: by their paths it takes far longer in deep trees.
    const int descriptor = ::dirfd(open.get());
    while (const dirent *found = ::readdir(open.get())) {
        const QByteArray nativeName(found->d_name);
        const QString name = QFile::decodeName(nativeName);
        if (!isListed(nativeName, name))
            continue;
        const EntryFacts facts = entryFacts(descriptor, nativeName.constData());
        if (isListed(facts))
            items.push_back({ name, facts });
    }
}

bool FolderListing::isListed(const QByteArray &nativeName, const QString &name) const
{
    const bool hidden = nativeName.startsWith('.');
    if (nativeName == "." || nativeName == ".." || (hidden && !filter.testFlag(QDir::Hidden)))
        return false;
    // A name that is no text can't be asked for.
    return !name.contains(QChar::ReplacementCharacter) || QFile::encodeName(name) == nativeName;
}

bool FolderListing::isListed(const EntryFacts &facts) const
{
    const bool kind = facts.file || (facts.folder && filter.testFlag(QDir::AllDirs));
    return kind && (facts.readable || !filter.testFlag(QDir::Readable));
}

void FolderListing::sort(int sortMode)
{
    std::sort(items.begin(), items.end(), [sortMode](const Item &a, const Item &b) {
        if (a.facts.folder != b.facts.folder)
            return a.facts.folder;
        const qint64 keyOfA = sortKey(a.facts, sortMode);
        const qint64 keyOfB = sortKey(b.facts, sortMode);
        return keyOfA != keyOfB ? keyOfA > keyOfB : a.name < b.name;
    });
}

std::optional<FolderListing::Entry> FolderListing::entry(qint64 index) const
{
    const Item &item = items.at(std::size_t(index));
    if (!item.facts.readable)
        return {};
    return Entry{ QFileInfo(dir.filePath(item.name)), item.facts };
}

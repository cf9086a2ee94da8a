#pragma once

#include "classic/pages/Entry.h"

#include <QDir>
#include <QFileInfo>
#include <QString>

#include <optional>
#include <vector>

/// The entries of one folder in the order in which a page shows them: what `QDir` gives for the
/// same filter and sort key, folders first, at a fraction of its price. A folder that can't be
/// read has none. Lives while its page is made.
class FolderListing
{
public:
    struct Entry
    {
        QFileInfo info;
        EntryFacts facts;
    };

    /// `folder` is absolute; `filter` takes `Files`, `AllDirs`, `Hidden` and `Readable`;
    /// `sortMode` is a `SessionData::SortMode`.
    FolderListing(const QString &folder, QDir::Filters filter, int sortMode);

    qint64 count() const { return qint64(items.size()); }

    /// `QFileInfo::canonicalFilePath` of the folder.
    QString canonicalPath() const { return canonical; }

    /// The entry at `index`; none when it can't be read.
    std::optional<Entry> entry(qint64 index) const;

private:
    struct Item
    {
        QString name;
        EntryFacts facts;
    };

    void read(const QString &folder);
    void sort(int sortMode);
    bool isListed(const QByteArray &nativeName, const QString &name) const;
    bool isListed(const EntryFacts &facts) const;

    const QDir dir;
    const QString canonical;
    const QDir::Filters filter;
    std::vector<Item> items;
};

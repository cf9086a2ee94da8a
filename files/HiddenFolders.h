#pragma once

#include <QByteArray>
#include <QStringList>

#include <vector>

#include <sys/types.h>

struct EntryFacts;

/// Folders that are never shown, served or changed, with all below them, whatever is shared and
/// whatever link or mount leads there. Made once at Start, where they stand then.
class HiddenFolders
{
public:
    HiddenFolders() = default;

    /// `folders` are absolute; they need not exist.
    explicit HiddenFolders(const QStringList &folders);

    bool isEmpty() const { return hidden.empty(); }

    /// Whether an absolute path without links is one of them or lies below one.
    bool covers(const QByteArray &path) const;

    /// The same of what is open at `descriptor`. What can't be told counts as hidden.
    bool coversOpen(int descriptor) const;

    /// Whether one of them lies below an absolute path without links, or is it.
    bool liesIn(const QByteArray &path) const;

    /// Whether an entry is one of them, under whatever name.
    bool has(const EntryFacts &facts) const;

    /// Their paths relative to the folder at `top`, of those that lie below it.
    std::vector<QByteArray> below(const QByteArray &top) const;

private:
    void add(const QByteArray &path);
    bool isReachedBy(const QByteArray &path) const;

    struct Folder
    {
        QByteArray path;
        dev_t device;
        ino_t inode;
    };

    std::vector<Folder> hidden;
};

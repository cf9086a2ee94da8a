#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QStringList>

#include <utility>
#include <vector>

#include <sys/types.h>

struct EntryFacts;

/// What is never shown, served or changed, whatever is shared and whatever link or mount leads
/// there: folders with all below them, and, where it is asked for, all that lies outside the share.
/// So is what differs from them by small and capital letters alone: it may be the same.
/// Made once at Start, where they stand then.
class HiddenFolders
{
public:
    HiddenFolders() = default;

    /// `folders` are absolute; they need not exist. All outside the open folder `shared` is hidden
    /// too, when there is one.
    explicit HiddenFolders(const QStringList &folders, FileDescriptor shared = {});

    /// Those of `others`, and all outside the open folder `shared`.
    HiddenFolders(const HiddenFolders &others, FileDescriptor shared);

    /// What tells the folder from others outside of which all is hidden; zeros when there is none.
    std::pair<dev_t, ino_t> borderId() const { return { borderDevice, borderInode }; }

    bool isEmpty() const { return hidden.empty() && !border.isOpen(); }

    /// Whether an absolute path without links is hidden.
    bool covers(const QByteArray &path) const;

    /// The same of what is open at `descriptor`. What can't be told counts as hidden.
    bool coversOpen(int descriptor) const;

    /// Whether one of the folders lies below an absolute path without links, or is it.
    bool liesIn(const QByteArray &path) const;

    /// Whether an entry is one of the folders, under whatever name.
    bool has(const EntryFacts &facts) const;

    /// Their paths relative to the folder at `top`, of those that lie below it, as `caselessPath`
    /// has them.
    std::vector<QByteArray> below(const QByteArray &top) const;

private:
    void add(const QByteArray &path);
    bool isOutside(const QByteArray &path) const;
    bool isReachedBy(const QByteArray &path) const;

    struct Folder
    {
        QByteArray path; ///< caseless
        dev_t device;
        ino_t inode;
    };

    std::vector<Folder> hidden;
    FileDescriptor border;
    dev_t borderDevice = 0;
    ino_t borderInode = 0;
};

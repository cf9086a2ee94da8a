#pragma once

#include "files/Entry.h"
#include "files/FileDescriptor.h"
#include "files/FolderReader.h"
#include "files/HiddenFolders.h"
#include "files/Place.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

/// A regular file that is open for reading, and what it was found to be.
struct OpenFile
{
    FileDescriptor descriptor;
    EntryFacts facts;
};

/// The only way from a request's path to the disk: a folder, or one file, and all that requests
/// may name of it. Holds the root open from Start on, so it stays right when that is renamed.
/// Paths are bytes as on disk, in any spelling; ".." never climbs, through a link either. One with
/// a NUL, whatever is hidden or being received, and a root that was removed do not exist
/// (`ENOENT`). Constant after it was made, for any thread.
class Share
{
public:
    enum class Links {
        Followed, ///< wherever they lead
        Beneath ///< only while they stay below the root; what others lead to does not exist
    };

    /// Opens what is to be shared. `path` is absolute; `hidden` are the folders that never show;
    /// `links` holds for all that is done here. None, with `errno`, when there is no such file or
    /// folder.
    static std::optional<Share> at(const QString &path, const QStringList &hidden, Links links);

    /// The part of `whole` that is all who have the folder at `path` for their own may see. Paths
    /// stay those of `whole`, but what lies elsewhere does not exist, and links end at the border
    /// of that folder whatever `whole` does with them. While it can't be opened, neither can
    /// anything in it, for the same reason.
    static std::shared_ptr<const Share> partOf(std::shared_ptr<const Share> whole,
                                               const QByteArray &path);

    /// That this is a part of; null when it is none.
    const std::shared_ptr<const Share> &whole() const { return outer; }

    /// Whether the folder of a part, open, is still the one that its path names in the whole.
    bool stillStands() const;

    bool isFolder() const { return folder; }

    /// Whether both were opened by the same path and are the same file or folder.
    bool isSame(const Share &other) const;

    /// Opens what `path` names, with the flags of `open` but never to create. Never waits for the
    /// other end of a pipe. Not open, with `errno`, when it can't be.
    FileDescriptor open(const QByteArray &path, int flags) const;

    /// Opens a regular file for reading. None, with `errno`, for anything else.
    std::optional<OpenFile> openFile(const QByteArray &path) const;

    /// Whether `path`, opened a moment ago, still leads to what was `found` then, unchanged in all
    /// respects. Costs one look; of a single file nobody can tell.
    bool leadsStillTo(const QByteArray &path, const EntryFacts &found) const;

    /// Opens a folder to read its entries. None, with `errno`, when it can't be.
    std::optional<FolderReader> openFolder(const QByteArray &path) const;

    /// Goes on with a folder that was opened beneath this share, for paths that are longer than the
    /// system can say.
    FolderReader reader(FileDescriptor folderBelow) const;

    /// A look at what `path` names. Nothing exists when it can't be looked at.
    EntryFacts facts(const QByteArray &path) const;

    /// Where `path` names an entry, which need not exist; a last link is that entry itself. Not
    /// valid, with `errno`, when its folder can't be opened. The root has its place too, as long
    /// as it is found by the path it was opened by or stands at now.
    Place place(const QByteArray &path) const;

    /// Where the file or folder stands that `path` leads to, through a last link as well. Not
    /// valid, with `errno`, when that doesn't exist.
    Place target(const QByteArray &path) const;

    /// Makes a folder and those above it that are missing. 0, also when it stands already, or the
    /// number of the error: `EEXIST` for a name that is being received.
    int makeFolders(const QByteArray &path) const;

private:
    Share() = default;

    void setHidden(HiddenFolders all);
    bool isHidden(const QByteArray &clean) const;
    bool isRemoved() const;
    std::optional<QByteArray> named(const QByteArray &path) const;
    FileDescriptor openNamed(const QByteArray &clean, int flags) const;
    FileDescriptor openSingle(const QByteArray &clean, int flags) const;
    FileDescriptor openReplaced(int flags) const;
    FileDescriptor openLinked(const QByteArray &clean, int flags) const;
    Place placeNamed(const QByteArray &clean) const;
    Place rootPlace() const;
    Place placeOf(const QByteArray &absolutePath) const;
    Place checked(Place found) const;

    FileDescriptor root; ///< a mere place (`O_PATH`)
    QByteArray rootPath; ///< that it was opened by
    std::shared_ptr<const Share> outer; ///< of a part
    QByteArray top; ///< the path of the root of a part in the whole
    int failure = 0; ///< why the root of a part is not open
    Place stood; ///< where a single file did at Start, unless links are followed
    bool folder = false;
    Links links = Links::Followed;
    bool wholly = false; ///< hidden as a whole
    std::shared_ptr<const HiddenFolders> hidden;
    std::vector<QByteArray> hiddenBelow; ///< relative paths without links, caseless
};

/// `share`, or that which it is a part of.
inline const std::shared_ptr<const Share> &wholeOf(const std::shared_ptr<const Share> &share)
{
    return share && share->whole() ? share->whole() : share;
}

#include "files/Share.h"

#include "files/Beneath.h"
#include "files/HiddenUploads.h"
#include "files/Path.h"
#include "files/Reservation.h"

#include <QList>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int placeFlags = O_PATH | O_CLOEXEC;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t folderMode = 0777;

FileDescriptor failed(int error)
{
    errno = error;
    return {};
}

Place noPlace(int error)
{
    errno = error;
    return {};
}

std::nullopt_t noName(int error)
{
    errno = error;
    return std::nullopt;
}

bool isMerePlace(int flags)
{
    return (flags & O_PATH) != 0;
}

/// Not blocking: a pipe would wait for its writer, and with it the whole server.
int patient(int flags)
{
    return isMerePlace(flags) ? flags | O_CLOEXEC
                              : flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_LARGEFILE;
}

QByteArray namePart(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

/// Without "/", "/." and the like at its end; empty when ".." stands there.
QByteArray withoutEnd(QByteArray path)
{
    while (path.endsWith('/') || path.endsWith("/."))
        path.chop(1);
    return namePart(path) == ".." ? QByteArray() : path;
}

/// Makes a folder there, unless it stands. Not open, with `errno`, when that can't be.
FileDescriptor makeFolderAt(const Place &place)
{
    if (Reservation::isTaken(place))
        return failed(EEXIST);
    const int folder = place.folder.get();
    const char *name = place.name.constData();
    if (::mkdirat(folder, name, folderMode) != 0 && errno != EEXIST)
        return {};
    return FileDescriptor(::openat(folder, name, placeFlags | O_DIRECTORY | O_NOFOLLOW));
}

/// No system has such a name, and what is being received has none yet.
bool namesNothing(const QByteArray &path)
{
    return path.contains('\0') || namesHiddenUpload(path);
}

} // namespace

std::optional<Share> Share::at(const QString &path, const QStringList &hidden, Links links)
{
    Share share;
    share.rootPath = nativePath(path);
    share.root.reset(::open(share.rootPath.constData(), placeFlags));
    if (!share.root.isOpen())
        return {};
    share.folder = entryFacts(share.root.get()).folder;
    share.links = links;
    const bool confined = share.folder && links == Links::Beneath;
    FileDescriptor border = confined ? duplicate(share.root.get()) : FileDescriptor();
    if (confined && !border.isOpen())
        return {};
    share.setHidden(HiddenFolders(hidden, std::move(border)));
    share.wholly = share.hidden->coversOpen(share.root.get());
    if (!share.folder && links == Links::Beneath)
        share.stood = share.placeOf(pathOf(share.root.get()));
    return share;
}

std::shared_ptr<const Share> Share::partOf(std::shared_ptr<const Share> whole,
                                           const QByteArray &path)
{
    Share part;
    part.top = cleanPath(path);
    part.folder = true;
    part.links = Links::Beneath;
    part.root = whole->open(part.top, placeFlags | O_DIRECTORY);
    FileDescriptor border = part.root.isOpen() ? duplicate(part.root.get()) : FileDescriptor();
    if (border.isOpen())
        part.setHidden(HiddenFolders(*whole->hidden, std::move(border)));
    else
        part.failure = errno;
    part.outer = std::move(whole);
    return std::make_shared<const Share>(std::move(part));
}

bool Share::stillStands() const
{
    const FileDescriptor now =
        outer ? outer->open(top, placeFlags | O_DIRECTORY) : FileDescriptor();
    return isSameEntry(entryFacts(root.get()), entryFacts(now.get()));
}

bool Share::isSame(const Share &other) const
{
    return rootPath == other.rootPath
        && isSameEntry(entryFacts(root.get()), entryFacts(other.root.get()));
}

void Share::setHidden(HiddenFolders all)
{
    hidden = std::make_shared<const HiddenFolders>(std::move(all));
    hiddenBelow = hidden->below(pathOf(root.get()));
}

bool Share::isHidden(const QByteArray &clean) const
{
    if (wholly || hiddenBelow.empty())
        return wholly;
    const QByteArray name = caselessPath(clean);
    return std::any_of(
        hiddenBelow.cbegin(), hiddenBelow.cend(),
        [&name](const QByteArray &folderBelow) { return isWithin(name, folderBelow); });
}

/// Nothing has a name for the root any more.
bool Share::isRemoved() const
{
    struct stat status = {};
    return ::fstat(root.get(), &status) == 0 && status.st_nlink == 0;
}

/// What `path` names, clean and relative to the root. None, with `errno`, when it is not for us.
std::optional<QByteArray> Share::named(const QByteArray &path) const
{
    if (namesNothing(path))
        return noName(ENOENT);
    QByteArray clean = cleanPath(path);
    if (failure != 0)
        return noName(failure);
    if (outer) {
        if (!isWithin(clean, top))
            return noName(ENOENT);
        clean = pathBelow(clean, top);
    }
    if (isHidden(clean))
        return noName(ENOENT);
    return clean;
}

FileDescriptor Share::open(const QByteArray &path, int flags) const
{
    const std::optional<QByteArray> clean = named(path);
    return clean ? openNamed(*clean, patient(flags)) : FileDescriptor();
}

FileDescriptor Share::openNamed(const QByteArray &clean, int flags) const
{
    if (!folder)
        return openSingle(clean, flags);
    // Below it nothing is found then anyway.
    if (clean.isEmpty() && isRemoved())
        return failed(ENOENT);
    // Without links and mounts on the way the path is what it says: its name was enough, but for
    // file systems that know an entry by several.
    FileDescriptor found = openPlain(root.get(), clean, flags);
    if (found.isOpen() && !hiddenBelow.empty() && hidden->coversOpen(found.get()))
        return failed(ENOENT);
    if (found.isOpen() || (errno != ELOOP && errno != EXDEV))
        return found;
    return openLinked(clean, flags);
}

FileDescriptor Share::openLinked(const QByteArray &clean, int flags) const
{
    const char *name = clean.isEmpty() ? "." : clean.constData();
    FileDescriptor found = links == Links::Beneath
        ? openBeneath(root.get(), clean, flags)
        : FileDescriptor(::openat(root.get(), name, flags));
    if (!found.isOpen())
        return failed(errno == EXDEV ? ENOENT : errno);
    return hidden->coversOpen(found.get()) ? failed(ENOENT) : std::move(found);
}

/// The descriptor is the share, whatever the file is called by now.
FileDescriptor Share::openSingle(const QByteArray &clean, int flags) const
{
    if (!clean.isEmpty())
        return failed(ENOTDIR);
    if (isRemoved())
        return openReplaced(flags);
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(root.get());
    return FileDescriptor(::open(path.constData(), flags & ~O_NOFOLLOW));
}

/// A file that was removed, by its name: editors save by putting a new one in the place of the old.
FileDescriptor Share::openReplaced(int flags) const
{
    FileDescriptor found(
        links == Links::Followed
            ? ::open(rootPath.constData(), flags & ~O_NOFOLLOW)
            : ::openat(stood.folder.get(), stood.name.constData(), flags | O_NOFOLLOW));
    // As a mere place, a link itself can be opened.
    if (!found.isOpen()
        || (!S_ISLNK(entryFacts(found.get()).mode) && !hidden->coversOpen(found.get())))
        return found;
    found.reset();
    return failed(ENOENT);
}

std::optional<OpenFile> Share::openFile(const QByteArray &path) const
{
    OpenFile file;
    file.descriptor = open(path, O_RDONLY);
    if (!file.descriptor.isOpen())
        return {};
    file.facts = openFacts(file.descriptor.get());
    if (file.facts.file)
        return file;
    file.descriptor.reset();
    errno = file.facts.folder ? EISDIR : ENXIO;
    return {};
}

bool Share::leadsStillTo(const QByteArray &path, const EntryFacts &found) const
{
    // Who sees the whole may have opened it through a link that leads out of the part.
    if (outer)
        return isUntouched(found, entryFacts(open(path, placeFlags).get()));
    return folder && isUntouched(found, linkFacts(root.get(), cleanPath(path).constData()));
}

std::optional<FolderReader> Share::openFolder(const QByteArray &path) const
{
    FileDescriptor found = open(path, folderFlags);
    if (!found.isOpen())
        return {};
    return FolderReader(std::move(found), hidden);
}

FolderReader Share::reader(FileDescriptor folderBelow) const
{
    return FolderReader(std::move(folderBelow), hidden);
}

EntryFacts Share::facts(const QByteArray &path) const
{
    const FileDescriptor plain = open(path, placeFlags | O_NOFOLLOW);
    if (!plain.isOpen())
        return {};
    EntryFacts found = entryFacts(plain.get());
    if (!S_ISLNK(found.mode))
        return found;
    const FileDescriptor target = open(path, placeFlags);
    found = target.isOpen() ? entryFacts(target.get()) : EntryFacts();
    found.link = true;
    return found;
}

Place Share::place(const QByteArray &path) const
{
    const std::optional<QByteArray> clean = named(path);
    return clean ? placeNamed(*clean) : Place();
}

Place Share::placeNamed(const QByteArray &clean) const
{
    if (clean.isEmpty())
        return rootPlace();
    Place found;
    found.folder = openNamed(parentPath(clean), placeFlags | O_DIRECTORY);
    if (!found.folder.isOpen())
        return {};
    found.name = namePart(clean);
    return checked(std::move(found));
}

Place Share::target(const QByteArray &path) const
{
    const FileDescriptor entry = open(path, placeFlags);
    if (!entry.isOpen())
        return {};
    Place found = placeOf(pathOf(entry.get()));
    if (isSameEntry(entryFacts(entry.get()),
                    entryFacts(found.folder.get(), found.name.constData())))
        return found;
    return noPlace(ENOENT);
}

Place Share::rootPlace() const
{
    const EntryFacts shared = entryFacts(root.get());
    for (const QByteArray &path : { withoutEnd(rootPath), pathOf(root.get()) }) {
        Place found = placeOf(path);
        if (found.isValid()
            && isSameEntry(shared, entryFacts(found.folder.get(), found.name.constData())))
            return found;
    }
    return noPlace(ENOENT);
}

Place Share::placeOf(const QByteArray &absolutePath) const
{
    Place found;
    const QByteArray parent = parentPath(absolutePath) + '/';
    found.folder.reset(::open(parent.constData(), placeFlags | O_DIRECTORY));
    found.name = namePart(absolutePath);
    return found.isValid() ? checked(std::move(found)) : Place();
}

/// Through links and mounts a place may be another than its path says.
Place Share::checked(Place found) const
{
    found.hidden = hidden;
    if (hidden->isEmpty())
        return found;
    const QByteArray parent = pathOf(found.folder.get());
    const QByteArray path = joinedPath(parent, found.name);
    if (parent.isEmpty() || hidden->covers(path))
        return noPlace(ENOENT);
    found.holdsHidden = hidden->liesIn(path);
    return found;
}

/// Each in the one that was made before: by its path from the root, a deep one would take all the
/// looks anew at each of its levels.
int Share::makeFolders(const QByteArray &path) const
{
    const std::optional<QByteArray> clean = named(path);
    if (!clean)
        return errno;
    if (openNamed(*clean, placeFlags | O_DIRECTORY).isOpen())
        return 0;
    // Below it nobody could name it.
    if (clean->size() >= PATH_MAX)
        return ENAMETOOLONG;
    const QByteArray above = longestPart(parentPath(*clean), [this](const QByteArray &part) {
        return openNamed(part, placeFlags | O_DIRECTORY).isOpen();
    });
    const QList<QByteArray> names = clean->mid(above.isEmpty() ? 0 : above.size() + 1).split('/');
    Place next = placeNamed(joinedPath(above, names.front()));
    for (int made = 1; next.isValid(); ++made) {
        FileDescriptor level = makeFolderAt(next);
        if (!level.isOpen())
            return errno;
        if (made == names.size())
            return 0;
        Place below{ std::move(level), names[made] };
        next = next.holdsHidden ? checked(std::move(below)) : std::move(below);
    }
    return errno;
}

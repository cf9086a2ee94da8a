#include "classic/pages/SelectionRemoval.h"

#include "classic/http/RequestTarget.h"
#include "classic/pages/Markup.h"
#include "files/Path.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace {

constexpr auto actionField = "a";
constexpr auto folderField = "d"; ///< the check box of a folder
constexpr std::size_t maxPaths = 50; ///< that anybody is told of
constexpr int maxFailures = 8000; ///< bytes: a session keeps them until its next page

/// Whether a field names the listed folder itself.
bool isListedFolder(const QString &name)
{
    return cleanPath(nativePath(name)).isEmpty();
}

/// Browsers post a line feed in a name as CR LF.
QByteArray existingPath(const Share &share, const QByteArray &folder, QByteArray name)
{
    QByteArray path = folder + '/' + name;
    if (!name.contains("\r\n"))
        return path;
    const EntryFacts facts = share.facts(path);
    const bool found = facts.exists || facts.link;
    return found ? path : folder + '/' + name.replace("\r\n", "\n");
}

} // namespace

SelectionRemoval::SelectionRemoval(std::shared_ptr<const Share> sharedFolder, QString path,
                                   QString pathOnDisk, const QByteArray &postedForm)
    : share(std::move(sharedFolder))
    , folder(std::move(path))
    , shownFolder(std::move(pathOnDisk))
    , unchecked(postedForm)
    , fields(postedForm)
{
}

bool SelectionRemoval::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    if (!checked && !check(until))
        return until.isCancelled();
    while (!forbidden && (tree || fields.next())) {
        if (!tree)
            begin();
        else if (tree->run(until))
            endFolder();
        if (until.isUsedUp())
            return until.isCancelled();
    }
    return true;
}

/// Nothing goes before every name was looked at. True once that is done.
bool SelectionRemoval::check(const Budget &until)
{
    while (!forbidden && unchecked.next()) {
        forbidden = climbsOut(unchecked.value());
        if (until.isUsedUp())
            return false;
    }
    checked = true;
    return true;
}

void SelectionRemoval::begin()
{
    const QString name = fields.value();
    if (fields.is(actionField) || isListedFolder(name))
        return;
    const QByteArray path = existingPath(*share, nativePath(folder), nativePath(name));
    if (fields.is(folderField))
        removeFolder(path, name);
    else
        removeFile(path);
}

void SelectionRemoval::removeFile(const QByteArray &path)
{
    const Place place = share->place(path);
    if (!place.isValid() || ::unlinkat(place.folder.get(), place.name.constData(), 0) != 0)
        return;
    ++removed;
    noteGone(path);
}

void SelectionRemoval::noteGone(const QByteArray &path)
{
    if (removedPaths.size() < maxPaths)
        removedPaths.push_back(path);
}

void SelectionRemoval::removeFolder(const QByteArray &path, const QString &name)
{
    if (!share->facts(path).folder)
        return;
    tree = std::make_unique<TreeRemoval>(share->place(path));
    treeName = name;
    treePath = path;
}

void SelectionRemoval::endFolder()
{
    const std::unique_ptr<TreeRemoval> ended = std::move(tree);
    removed += ended->removed();
    if (ended->isWhole())
        return noteGone(treePath);
    const QByteArray failure =
        " delete " + toAscii(shownFolder + QLatin1Char('/') + treeName) + " failed,";
    if (failures.size() + failure.size() <= maxFailures)
        failures += failure;
}

QByteArray SelectionRemoval::message() const
{
    return failures + QByteArray::number(removed) + " file removed. ";
}

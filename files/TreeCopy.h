#pragma once

#include "files/DiskError.h"
#include "files/DiskJob.h"
#include "files/FileCopy.h"
#include "files/Share.h"

#include <QByteArray>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// Copies the files of a folder tree one by one, each where the caller says. Links are followed,
/// but no folder is entered twice. Hidden entries, and what is neither file nor folder, are left
/// out. Each folder's entries come by name, in any case, a folder's content in its place.
///
/// The job is finished each time when there are outcomes to be taken; it is to be run again until
/// it is at its end.
class TreeCopy final : public DiskJob
{
public:
    struct Outcome
    {
        QByteArray path; ///< of the source, relative to the share's root
        DiskError error = DiskError::None;
    };

    /// Gives the copy of a file, or null when it is not to be made, which counts as `Exists`.
    /// Called on a worker thread.
    using Begin = std::function<std::unique_ptr<FileCopy>(const QByteArray &path, OpenFile file)>;

    TreeCopy(std::shared_ptr<const Share> share, const QByteArray &path, Begin begin);

    bool run(const Budget &until) override;
    void abandon() override;

    bool isAtEnd() const { return levels.empty() && !folder && !copy; }

    /// What was done since the last call, in order.
    std::vector<Outcome> takeOutcomes() { return std::exchange(outcomes, {}); }

private:
    struct Entry
    {
        std::size_t name; ///< where it begins in the names
        bool folder;
    };

    /// What is left to do in a folder. Few bytes an entry: there may be a million.
    struct Level
    {
        QByteArray path; ///< of the folder
        std::string names; ///< each with a NUL behind it
        std::vector<Entry> entries; ///< the next one last
    };

    void step(const Budget &until);
    void read(const Budget &until);
    void keep(const FolderReader::Item &item);
    void takeNext();
    void open(const QByteArray &path);
    void copyFile(const QByteArray &path);

    const std::shared_ptr<const Share> share;
    const Begin begin;
    std::vector<Level> levels; ///< from the top to the current one
    std::set<std::pair<dev_t, ino_t>> entered; ///< folders
    std::optional<FolderReader> folder; ///< being read
    QByteArray current; ///< the path of the folder or file at work
    std::unique_ptr<FileCopy> copy; ///< under way
    std::vector<Outcome> outcomes;
};

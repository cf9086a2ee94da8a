#pragma once

#include <QString>

#include <optional>
#include <vector>

/// What PROPFIND reports of one file or folder.
struct Resource
{
    QString name; ///< without its folder
    qint64 size = 0; ///< bytes; of a folder, what its entry takes
    qint64 modified = 0; ///< seconds since the epoch
    bool isFolder = false;
};

/// The file or folder at an absolute path, through links; nothing for what is neither.
std::optional<Resource> resourceAt(const QString &path);

/// The readable files of a folder, and its folders if `withFolders`, sorted by name. Hidden
/// entries, and names that no request could spell, are left out. Empty if it can't be listed.
std::vector<Resource> listFolder(const QString &folder, bool withFolders);

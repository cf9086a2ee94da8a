#pragma once

#include <QString>

/// Removes a folder with all it holds. A link to a folder is never followed: the link goes,
/// what it leads to stays. A value that its caller owns; it works before the call returns.
class DeleteDir
{
public:
    /// `folder` is the top folder; nothing is removed yet.
    explicit DeleteDir(QString folder);

    /// Removes the top folder. False when it could not be removed whole; what could be removed
    /// is gone even then. A folder that does not exist is a success.
    bool deleteDir();

    /// The same for any other folder; the count goes on.
    bool deleteDir(const QString &folder);

    /// How many entries below the top folders were removed so far: files, links and folders.
    int getDeleted() const { return deleted; }

private:
    void count(bool removed);

    qint32 deleted = 0;
    bool success = true; ///< of the last step that decides
    QString path;
};

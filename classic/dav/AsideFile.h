#pragma once

#include <QTemporaryFile>

/// A file that takes its name only when it is whole. Until then it has none at all where the file
/// system can do that, else a hidden one beside its future place. It is gone with its object
/// unless it was put in place.
class AsideFile : public QTemporaryFile
{
    Q_OBJECT
public:
    /// `target` is an absolute path; through a link to a file it means that file.
    explicit AsideFile(const QString &target);

    /// Opens it for writing. False when the folder of the target can't take it.
    bool openAside();

    /// Gives it its name and closes it. False, and nothing changed, when something has that name.
    bool place();

    /// The same in the place and with the permissions of an existing file, which it replaces
    /// in one step.
    bool replace();

private:
    QString finalPath;
};

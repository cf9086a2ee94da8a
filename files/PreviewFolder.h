#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <memory>

/// The folder of one run's previews, in one that is shared with other programs and other runs.
/// It is marked as in use by a lock that ends with the process, and goes with its owner.
class PreviewFolder
{
public:
    /// Makes one in `parent`, which is made too when it is missing. Null, with errno set, when
    /// that fails.
    static std::unique_ptr<PreviewFolder> make(const QString &parent);

    /// Removes the folders in `parent` whose process is gone. What others keep there is left
    /// alone, and a link is never taken for a folder.
    static void sweep(const QString &parent);

    ~PreviewFolder();

    /// Whether it is still there: people clear such folders.
    bool exists() const;

    /// The path of the file `name`, which need not be there.
    QString pathOf(const QByteArray &name) const;

    /// Gives the file `from` the name `to` and gives its size in bytes; -1 when it can't.
    qint64 rename(const QByteArray &from, const QByteArray &to) const;

    void remove(const QByteArray &name) const;

private:
    Q_DISABLE_COPY_MOVE(PreviewFolder)

    explicit PreviewFolder(QByteArray madeFolder);
    bool takeLock();

    const QByteArray path;
    FileDescriptor folder;
    FileDescriptor lock;
};

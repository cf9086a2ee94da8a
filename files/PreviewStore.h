#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// The folder of the previews that are kept from run to run, by all programs of this user, for
/// whom alone it is. Whatever becomes of it meanwhile, previews are only lost. Each call is for any
/// thread.
class PreviewStore
{
public:
    /// `folderPath` is made with the first preview; of what is in it at most `maxBytes` stay.
    PreviewStore(const QString &folderPath, qint64 maxBytes);

    /// Opens the preview of this name for reading, and notes that it was used. An empty one says
    /// that none can be made. Not open when there is none.
    FileDescriptor find(const QByteArray &name) const;

    /// Takes over what is open at `preview`, from its start. The name appears with the whole of it.
    void add(const QByteArray &name, int preview) const;

    /// Removes the empty ones, what a program that was killed has left unfinished, and those not
    /// used for the longest as long as there is too much.
    void sweep() const;

    /// Sweep after this many bytes, each preview being `sizeOnDisk`; two programs that do stay
    /// within the bound.
    qint64 sweepAfter() const { return most / shares; }

    static qint64 sizeOnDisk(qint64 bytes);

private:
    bool makeFolder() const;

    static constexpr qint64 shares = 16; ///< of the bound, two of which are room for new ones

    const QByteArray folder;
    const qint64 most; ///< bytes
};

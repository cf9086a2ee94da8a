#pragma once

#include "standard/http/FileTaker.h"
#include "standard/web/OpenUploads.h"

#include <QByteArray>
#include <QtGlobal>

#include <functional>
#include <vector>

namespace standard {

/// The base of the handlers that take files for a folder and those around them: each by the rights,
/// the rules for names and the locks of a PUT.
class UploadTaker : public FileTaker
{
public:
    using FileTaker::FileTaker;

protected:
    /// Where a file is to stand, as it looks now.
    struct Spot
    {
        QByteArray path; ///< of the share
        bool replaces = false; ///< what is there
        bool isFree = true; ///< nothing is there, or something that may be replaced
        Rights needed = Right::Add;

        std::vector<Change> changes() const;
    };

    /// `path` is one of the share.
    Spot spotAt(const QByteArray &path, bool mayReplace) const;

    /// Whether it is one of the server's own, or kept for files that are being received.
    bool isKeptName(const QByteArray &path) const;

    /// The folders around a path that are not there, the inner ones first.
    std::vector<QByteArray> missingAround(const QByteArray &path) const;

    /// Makes a folder and those above it that are missing, which are too many for one turn of the
    /// loop when there are many files. `next` is told how it ended, as by `Share::makeFolders`,
    /// unless nobody waits any more.
    void makeFolder(const QByteArray &folder, std::function<void(int error)> next);

    /// Whether the disk of `folder`, which is there, holds so much beside what others were
    /// promised.
    bool hasRoom(const QByteArray &folder, qint64 bytes) const;

    /// Begins `upload`, which replaces something or doesn't.
    DiskError beginAt(const QByteArray &path);

    OpenUploads &uploads() const { return *exchange.routes().uploads; }
};

} // namespace standard

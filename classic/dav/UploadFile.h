#pragma once

#include <QFile>

#include <memory>

class AsideFile;

/// The file that a request body is received into. While it lives, no other upload gets that name;
/// unless it is kept, it leaves nothing behind. Owned by the responder.
class UploadFile
{
public:
    UploadFile();
    ~UploadFile();

    /// Makes a new file. False when something has that name, or it can't be made.
    bool create(const QString &path);

    /// Opens a file beside an existing one, which keeps its content until `keep`. False when that
    /// one is being received, is no file, or can't be replaced.
    bool replace(const QString &path);

    /// What the body is written into.
    QFile *device();

    /// The body is whole. False when the file could not take its place.
    bool keep();

private:
    Q_DISABLE_COPY_MOVE(UploadFile)

    void removeCreated();

    QFile file; ///< the new file, or the existing one; locked
    std::unique_ptr<AsideFile> aside; ///< only when a file is replaced
    bool created = false; ///< `file` is ours to remove
    bool kept = false;
};

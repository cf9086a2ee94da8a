#pragma once

#include "server/MultipartCutter.h"

#include <QByteArray>

#include <memory>

class Pipe;
class UploadFile;

/// How an upload ended.
enum SaveResult {
    Saved = 0,
    OpenFailed = 1,
    ReadFailed = 2,
    WriteFailed = 3,
    NoUsableForm = 4,
    NameExists = 5,
    BoundaryMissing = 6
};

/// Writes a request body, or one part of a multipart body, into a file. It calls nobody.
class BodySaver
{
public:
    /// The next `length` bytes of a body belong into `upload`, which is borrowed.
    void start(UploadFile *upload, qint64 length);

    /// The same for one part of a multipart body: the file ends at the first `delimiter` within
    /// these bytes.
    void startPart(UploadFile *upload, qint64 length, const QByteArray &delimiter);

    /// How many bytes may still be fed.
    qint64 left() const { return toSave; }

    /// Takes the next bytes of the body; false when they could not be written.
    bool feed(const char *data, qint64 size);

    /// Whether nobody has to see them.
    bool takesPipe() const { return !cutter; }

    /// The same of the bytes that stand in `pipe`.
    bool feed(Pipe &pipe);

    bool isDone() const { return toSave <= 0 || (cutter && cutter->isFound()); }

    /// What became of a body that is done.
    SaveResult result() const;

private:
    UploadFile *file = nullptr;
    qint64 toSave = 0;
    std::unique_ptr<MultipartCutter> cutter; ///< of one part; null for a whole body
};

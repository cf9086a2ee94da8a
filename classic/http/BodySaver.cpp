#include "classic/http/BodySaver.h"

#include "files/Pipe.h"
#include "files/UploadFile.h"

void BodySaver::start(UploadFile *upload, qint64 length)
{
    file = upload;
    toSave = length;
    cutter.reset();
}

void BodySaver::startPart(UploadFile *upload, qint64 length, const QByteArray &delimiter)
{
    start(upload, length);
    cutter = std::make_unique<MultipartCutter>(delimiter);
}

bool BodySaver::feed(const char *data, qint64 size)
{
    toSave -= size;
    if (!cutter)
        return file->write(data, size) == DiskError::None;
    const QByteArray content = cutter->feed(QByteArray::fromRawData(data, int(size)));
    return file->write(content.constData(), content.size()) == DiskError::None;
}

bool BodySaver::feed(Pipe &pipe)
{
    toSave -= pipe.size();
    return file->write(pipe) == DiskError::None;
}

SaveResult BodySaver::result() const
{
    return cutter && !cutter->isFound() ? BoundaryMissing : Saved;
}

#pragma once

#include "classic/http/BodySaver.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QObject;
class UploadFile;
struct Exchange;

/// Receives the first file of a multipart form (RFC 7578) into a folder of the share; a file that
/// is there already is never touched. A part of its responder, which hands on what the channel
/// tells it.
class FormUpload
{
public:
    using Ended = std::function<void(SaveResult result)>;

    /// Both are borrowed and outlive it; nothing is told once `responder` is gone.
    FormUpload(Exchange &current, QObject *responder, Ended whenEnded);
    ~FormUpload();

    /// Receives into `target`, a folder's path below the share. The end is told once, perhaps
    /// before this call returns.
    void start(const QString &target);

    void partHeadReady(const QByteArray &lines);
    void bodyEnded(SaveResult result);

private:
    SaveResult open(const QByteArray &path);
    void finish(SaveResult result);

    Exchange &exchange;
    QObject *context;
    Ended ended;
    QString folder;
    std::shared_ptr<UploadFile> file;
};

/// The file name of an upload, from the headers of its part: the last Content-Disposition line's
/// filename without the client's folders, UTF-8 or else Latin-1. Empty when there is none.
QString uploadName(const QByteArray &partHeaders);

#pragma once

#include "classic/http/FormUpload.h"
#include "classic/http/Responder.h"

struct ServedFile;

/// Answers GET and POST for the shared item with plain files, and receives form uploads.
/// The base of what browsers get.
class FileReply : public Responder
{
    Q_OBJECT
public:
    explicit FileReply(Exchange &current);

    void reply() override;
    void partHeadReady(const QByteArray &lines) override;
    void uploadEnded(SaveResult result) override;

    /// The Content-Type of a lower-case file name extension; empty when there is none.
    static QByteArray typeOf(const QString &extension);

protected:
    /// Sends the regular file at `path` of the share. False, with nothing sent, when there is none
    /// that can be read.
    bool sendRegular(const QString &path);

    /// Sends the file at `path` of the share, the site icon, or the not-found page, which tells
    /// `shownPath`. Only regular files are opened; anything else that exists is
    /// "500 Can't read file".
    void sendShared(const QString &path, const QString &shownPath);

    /// The same with a file of the program's own, by its absolute path.
    void sendInstalled(const QString &path, const QByteArray &status = Status::ok);

    /// Sends `file` under `name`, or the part of it that is asked for.
    void sendOpened(ServedFile file, const QString &name, const QByteArray &status = Status::ok);

    /// The "404 Not Found" page. `triedFile` is a path in UTF-8.
    void notFound(const QByteArray &triedFile);

    /// A form upload ended. Here it closes the connection without an answer.
    virtual void uploadDone(SaveResult result);

    FormUpload upload;

private:
    void refuse(const QString &shownPath, bool exists);
};

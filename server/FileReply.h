#pragma once

#include "server/Responder.h"

#include <QFile>

/// Answers GET and POST for the shared item with plain files, and receives form uploads.
/// The base of the browser file manager.
class FileReply : public Responder
{
    Q_OBJECT
public:
    /// Both are borrowed and outlive the connection.
    FileReply(Profile *profile, Request *httpRequest);

    using Responder::reply;
    void reply(const QFileInfo &shared) override;

    /// Sends one file, the site icon, or the not-found page. Only regular files are opened;
    /// anything else that exists is "500 Can't read file".
    void sendFile(const QString &path) override;

    /// The Content-Type of a lower-case file name extension; empty when there is none.
    static QByteArray getContentType(const QString &extension);

    /// The "404 Not Found" page. `triedFile` is a path in UTF-8.
    void notFound(const QByteArray &triedFile);

    /// Receives the first file of a multipart form into `folder`. The end is told to
    /// `reply(int)`, perhaps before this call returns; an existing file is never touched.
    void saveFileTo(const QString &folder);

    /// Closes the received file, removes it when it is not whole, and closes the connection
    /// without an answer.
    void reply(int result) override;

protected:
    /// Closes the received file and removes it when it is not whole.
    void finishUpload(int result);

    Profile *config;

private:
    void receivePart(const QByteArray &headers);
    void refuseFile(const QString &path);
    static QByteArray disposition(const QString &path);

    QFile file; ///< being sent or received
    QString uploadFolder;
    bool receiving = false; ///< `file` was made by the current upload
};

/// Opens a regular file for reading; false for anything else and when it can't be opened.
/// Never waits: a pipe without a writer is refused like a folder.
bool openRegularFile(QFile &file, const QString &path);

/// The file name of an upload, from the headers of its part: the last Content-Disposition line's
/// filename without the client's folders, UTF-8 or else Latin-1. Empty when there is none.
QString uploadName(const QByteArray &partHeaders);

#pragma once

#include "server/Request.h"

#include <QByteArray>
#include <QFileInfo>
#include <QObject>
#include <QString>

class Profile;

/// The base of every responder: writes the header block and declares the operations that the
/// dispatcher calls. A child of the request's channel, kept for the next request when that needs
/// a responder of the same object name; so each call must start with fresh state.
class Responder : public QObject
{
    Q_OBJECT
public:
    explicit Responder(Request *httpRequest);

    virtual void reply() { }
    /// `shared` is the file or folder that the server shares, `profile` its live profile.
    virtual void reply(const QFileInfo &shared, Profile *profile);
    virtual void reply(const QFileInfo &shared);
    /// `path` is absolute.
    virtual void sendFile(const QString &path);

    /// Appends CR LF, or a line of `text` and CR LF.
    static void addLine(QByteArray &out) { out.append("\r\n"); }
    static void addLine(QByteArray &out, const QByteArray &text)
    {
        out.append(text).append("\r\n");
    }

    /// The Content-Type of bodies from now on; none when empty.
    void setContentType(const QByteArray &type) { contentType = type; }

    /// Writes the status line ("200 OK") and the header block. `length` is the size of the body
    /// that follows; with 0 the reply ends here. `extra` holds whole header lines, each ended by
    /// CR LF.
    void sendHeader(const QByteArray &status, qint64 length, const QByteArray &extra = {});

public Q_SLOTS:
    /// An upload that this responder started has ended, see `SaveResult`.
    virtual void reply(int result);

protected:
    /// Has the channel report the end of uploads to `reply(int)`, once each.
    void awaitUpload();

    Request *request; ///< borrowed from the connection
    QByteArray contentType;
};

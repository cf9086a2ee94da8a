#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHostAddress>
#include <QtGlobal>

#include <optional>

/// Who is at the other end of a connection.
struct Client
{
    /// Where a trusted proxy stands between and answers are standard ones: that of whom it serves.
    QHostAddress address;
    QByteArray account; ///< logged in as; empty for nobody in particular
    QByteArray program; ///< see `programOf`
};

/// A file on its way over a connection.
struct FileTransfer
{
    bool isUpload = false; ///< else it goes to the client
    qint64 left = -1; ///< bytes to come; -1 when nobody knows
    QByteArray path = {}; ///< as the client names it, decoded
    qint64 done = 0; ///< bytes, about: with the heads of request and reply
};

/// A connection as the user is shown it.
struct Visit
{
    quint64 number = 0; ///< of the connection, among all of the server
    Client client;
    QHostAddress counted; ///< whom a block would keep out, see `PeerCount`; null: nobody
    QDateTime since;
    std::optional<FileTransfer> transfer; ///< what goes on right now
};

/// A request that is over.
struct Deed
{
    Client client;
    QByteArray method;
    QByteArray path; ///< as the client names it, decoded
    int status = 0; ///< of the reply; 0 when it got none
    bool isWhole = false; ///< body and reply were taken to the end
    bool isFolder = false; ///< it was looked at, not taken
};

/// The program that sends this User-Agent (RFC 9110, 10.1.5), in a word: the browser's name, else
/// that of its first product.
QByteArray programOf(const QByteArray &userAgent);

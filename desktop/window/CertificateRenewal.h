#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

class NotingSink;
class ServerRows;

/// Has this machine's authority sign the certificates of the rows anew when they don't name its
/// addresses any more, or end soon. Looks when rows come, go, start or stop, and from time to time;
/// servers go on meanwhile. Tells of those that end and that others would have to renew. A part of
/// the keeper of the rows.
class CertificateRenewal : public QObject
{
    Q_OBJECT
public:
    /// Both are borrowed; what a renewed certificate gives cause to warn of goes to `sink`.
    CertificateRenewal(ServerRows *choice, NotingSink *sink);

Q_SIGNALS:
    /// Translated. Nothing is told of what goes on failing, or ends all the same.
    void failed(const QString &text);

private:
    void look();
    void renew(const QString &certificate);
    void finish(const QString &certificate, const QString &problem);
    void reload(const QString &certificate) const;
    void warnOfEnd(const QString &certificate);

    ServerRows *rows;
    NotingSink *warnings;
    QTimer soon; ///< when all rows have followed
    QTimer daily;
    QTimer retry;
    QSet<QString> failing; ///< certificates
    QSet<QString> ending; ///< and were told
};

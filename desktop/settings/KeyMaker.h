#pragma once

#include "server/KeyTool.h"

#include <QObject>
#include <QString>

/// Makes a key and a certificate that this machine's own authority signs. For one pair; deletes
/// itself once it is done, and ends a tool that is still at work, without a signal, when it goes.
class KeyMaker : public QObject
{
    Q_OBJECT
public:
    /// The pair goes to `folder`, under names that nothing has there, the key for its owner alone.
    KeyMaker(const QString &folder, QObject *parent);

    /// Begins, and returns at once. One of the signals follows.
    void start();

Q_SIGNALS:
    void made(const QString &keyFile, const QString &certificateFile);

    /// `reason` is for the user.
    void failed(const QString &reason);

private:
    void finish(const QString &problem);
    void fail(const QString &reason);

    const QString target;
    const QString name;
    KeyTool tool;
};

/// The SHA-256 fingerprint of the certificate in `file`, translated, in several lines. Empty when
/// there is none.
QString certificateFingerprint(const QString &file);

/// That of this machine's authority, if it has signed the certificate in `file`, in the same way.
QString authorityFingerprint(const QString &file);

/// What a user compares of the certificate in `file`: its SHA-256 fingerprint, the names that it is
/// for, and the fingerprint of this machine's authority if that has signed it; translated, a line
/// each. Empty when there is none.
QString certificateFacts(const QString &file);

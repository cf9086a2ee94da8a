#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// Makes a key and a certificate that this machine signs itself, with the command-line tool of
/// OpenSSL. For one pair; deletes itself once it is done.
class KeyMaker : public QObject
{
    Q_OBJECT
public:
    /// The pair goes to `folder`, under names that nothing has there, the key for its owner alone.
    KeyMaker(QString folder, QObject *parent);

    /// Ends a tool that is still at work; no signal follows.
    ~KeyMaker() override;

    /// Begins, and returns at once. One of the signals follows.
    void start();

Q_SIGNALS:
    void made(const QString &keyFile, const QString &certificateFile);

    /// `reason` is for the user.
    void failed(const QString &reason);

private:
    void finish();
    bool moveFiles(const QString &name);
    void fail(const QString &reason);

    const QString target;
    QTemporaryDir work; ///< nobody sees a pair that isn't whole
    QProcess tool;
};

/// The SHA-256 fingerprint of the certificate in `file`, translated, in several lines. Empty when
/// there is none.
QString certificateFingerprint(const QString &file);

/// What a user compares of the certificate in `file`: its SHA-256 fingerprint and the names that it
/// is for, translated, a line each. Empty when there is none.
QString certificateFacts(const QString &file);

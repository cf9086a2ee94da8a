#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

/// Makes the pair of one key and its certificate, or renews the certificate when that is due and
/// this machine's own authority has signed it: runs "make-keys.sh", which lies beside the program.
class KeyTool : public QObject
{
    Q_OBJECT
public:
    /// For NAME.key and NAME.crt in `folder`.
    KeyTool(QString folder, QString name, QObject *parent = nullptr);

    /// For the pair of `certificate`, a NAME.crt.
    explicit KeyTool(const QString &certificate, QObject *parent = nullptr);

    /// Ends a tool that is still at work; no signal follows.
    ~KeyTool() override;

    /// Whether `certificate` and its key are there, and beside them an authority that we could have
    /// it signed by again.
    static bool canRenew(const QString &certificate);

    /// Begins, and returns at once. `ended` follows.
    void start();

    /// Waits for the end of a tool that was started, not for long; `ended` comes meanwhile.
    void wait();

Q_SIGNALS:
    /// The files are as they should be when `problem`, in the tool's words, is empty.
    void ended(const QString &problem);

private:
    void finish(int exitCode, QProcess::ExitStatus status);

    const QString target;
    const QString pair;
    QProcess tool;
};

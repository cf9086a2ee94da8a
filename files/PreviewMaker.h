#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

#include <chrono>

/// Has a program make one preview after another, each in a process that a hostile picture can take
/// down alone. Lives in the event loop, with who keeps the previews.
class PreviewMaker : public QObject
{
    Q_OBJECT
public:
    enum class End {
        Made,
        Refused, ///< the picture has none
        TookTooLong, ///< which may be due to what else the system does
        NotStarted ///< the program can't be, see `problem`
    };

    /// `program` is the path of quillon-preview. Each picture may take it `time`.
    PreviewMaker(const QString &program, std::chrono::milliseconds time);

    /// Ends what is in work.
    ~PreviewMaker() override;

    /// Begins with the picture open at `picture`, which is to stay so until `ended`, to fill the
    /// file `preview`. `kind` is how it is to be, as the program takes it. One at a time.
    void make(int picture, const QString &preview, const QByteArray &kind);

    /// What is in work isn't wanted any more. `ended` follows.
    void giveUp() { process.kill(); }

    QString program() const { return process.program(); }
    QString problem() const { return process.errorString(); }

Q_SIGNALS:
    void ended(PreviewMaker::End end);

private:
    QProcess process;
    QTimer patience; ///< with what is in work
};

#pragma once

#include "files/Share.h"

#include <QBasicTimer>
#include <QByteArray>
#include <QHash>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

/// What is remembered of a file for as long as it stays open.
struct FileMemo
{
    QByteArray note; ///< what its sender wants to find again; empty at first
    QByteArray content; ///< all of a small one that is asked for often; may be empty
};

/// A regular file that is open for all who are being sent it, and what it was found to be.
struct ServedFile
{
    OpenDescriptor descriptor;
    EntryFacts facts;
    std::shared_ptr<FileMemo> memo;
};

/// One that was opened elsewhere.
ServedFile served(OpenFile file);

/// Opens files to be sent. A small one stays open for a second: whoever asks again meanwhile costs
/// one look at its name, and opening is what a small reply would spend most on; not where that
/// would keep others from deleting it. What is sent is never old, as a file that was replaced,
/// changed or forbidden is opened anew; one that is written through a mapping may lag behind by
/// that second. Lives in the event loop.
class OpenFiles : public QObject
{
public:
    OpenFiles() = default;

    /// The file that `path` names in `share`; the same one from call to call, until `clear`. None,
    /// with `errno`, as `Share::openFile` has it.
    std::optional<ServedFile> open(const Share &share, const QByteArray &path);

    /// Lets all of them go.
    void clear();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Kept
    {
        ServedFile file;
        Clock::time_point opened;
    };

    void keep(const QByteArray &path, const ServedFile &file);
    void dropOld();

    QHash<QByteArray, Kept> kept;
    QBasicTimer timer;
};

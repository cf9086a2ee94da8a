#pragma once

#include "files/FileDescriptor.h"
#include "files/PictureId.h"
#include "files/PreviewMaker.h"
#include "files/PreviewQueue.h"

#include <QCache>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <memory>

class PreviewFolder;

struct PreviewLimits
{
    std::size_t waiting = 10000; ///< pictures
    int kept = 256 * 1024 * 1024; ///< bytes of finished previews
    std::chrono::milliseconds time = std::chrono::seconds(20); ///< for one picture
};

/// The previews of pictures in lists: what is made, what waits, and the program that makes one
/// after another. One serves the whole program and lives in its event loop; the previews go with
/// it.
class Previews : public QObject
{
    Q_OBJECT
public:
    enum class State { Pending, Ready, Failed };

    /// `program` is the path of quillon-preview. The previews are kept in a folder of their own
    /// in `folder`; both are first touched when there is a picture to make.
    Previews(const QString &program, QString folder, const PreviewLimits &limits = {});
    ~Previews() override;

    /// Removes from `folder` what runs left behind that ended abnormally, and nothing else.
    static void sweep(const QString &folder);

    QString program() const { return maker.program(); }

    /// How far the preview of a picture is; one that is new is queued, one that waits is moved
    /// ahead. `extension` is what its name ends in, "png" or "jpg". `open` is called when its
    /// turn comes, perhaps long after, so it owns what it needs, or not at all.
    State want(const PictureId &id, const QByteArray &extension, PictureOpener open,
               Urgency urgency);

    /// The file of the finished preview; empty when there is none (yet).
    QString fileOf(const PictureId &id) const;

Q_SIGNALS:
    /// No previews can be made, and why. Emitted once; it is tried again from time to time.
    void problem(const QString &text);

private:
    class Preview;

    void makeNext();
    bool openPicture(const PreviewJob &job);
    bool hasFolder();
    void makingEnded(PreviewMaker::End end);
    void keep(const PictureId &id, const QByteArray &name);
    void pauseFor(const QString &reason);

    const QString m_folder;
    std::unique_ptr<PreviewFolder> ownFolder; ///< null until there is a picture to make
    QCache<PictureId, Preview> finished; ///< the failed ones too
    PreviewQueue waiting;
    PictureId current; ///< the picture in work, while `picture` is open
    FileDescriptor picture;
    quint64 made = 0; ///< names the previews
    bool problemTold = false;
    QDeadlineTimer pause; ///< nothing is tried before
    QTimer turn; ///< queues `makeNext`
    PreviewMaker maker;
};

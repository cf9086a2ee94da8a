#pragma once

#include <QFile>
#include <QObject>

#include <functional>
#include <memory>

class AsideFile;

/// Copies one file at a time, a slice per turn of the event loop, so that a large one keeps nobody
/// waiting. Owned by a responder; when that goes, so does what was copied so far.
class FileCopy : public QObject
{
    Q_OBJECT
public:
    enum class Existing { Kept, Replaced };

    /// Told whether the copy is in its place. Never called inside `start`.
    using Done = std::function<void(bool copied)>;

    FileCopy();
    ~FileCopy() override;

    /// Copies content and permissions. Fails when the source is no regular file that can be read,
    /// or something stands at `target` that is not to be replaced. One copy at a time.
    void start(const QString &source, const QString &target, Existing existing, Done done);

private:
    bool open(const QString &sourcePath, const QString &target);
    void copySlice();
    bool place();
    void finish(bool copied);

    QFile source;
    qint64 left = 0; ///< bytes to copy
    std::unique_ptr<AsideFile> copy;
    Existing whenThere = Existing::Kept;
    Done done;
};

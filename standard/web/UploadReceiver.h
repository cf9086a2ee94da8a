#pragma once

#include "files/PartialUpload.h"
#include "standard/web/UploadChecksum.h"
#include "standard/web/UploadTaker.h"

#include <QByteArray>
#include <QtGlobal>

#include <memory>
#include <optional>
#include <vector>

namespace standard {

/// The base of the methods that bring bytes of an upload. What has arrived stays when the body
/// breaks off, and when the whole can't have its name yet.
class UploadReceiver : public UploadTaker
{
public:
    using UploadTaker::UploadTaker;

    static constexpr auto contentType = "application/offset+octet-stream";

    void bodySaved(BodyEnd end) override;
    std::vector<QByteArray> addedFiles() const override;
    QByteArray receivedFile() const override { return target(); }
    void ended() override;

protected:
    /// Tells how much is here, with these fields among others.
    virtual void accept(Fields progress) = 0;

    /// Whether the body is one of at most `room` bytes of a file; else the request is refused.
    bool fits(qint64 room);

    /// Whether the file may stand at `path` of the share; else the request is refused.
    bool mayStand(const QByteArray &path, bool mayReplace);

    // Both of the above are to be asked for before one of these.

    /// Goes on with an upload that is claimed.
    void resume(PartialUpload claimed);

    /// Receives a file as a whole: nobody can go on with it, so it needs no hidden name.
    void receiveWhole(const QByteArray &id, const PartialRecord &wanted);

    /// Where the file is to stand, a path of the share.
    const QByteArray &target() const { return spot.path; }

    /// What is about to be changed.
    virtual std::vector<Change> changes() const { return spot.changes(); }

    /// Notes that it is open, by whom.
    std::shared_ptr<OpenUploads::Upload> enter(const PartialUpload &begun);

    std::shared_ptr<const PartialUpload> partial; ///< once it is gone on with

private:
    bool openFile();
    void receive();
    void tell(qint64 offset);
    bool write(const char *data, qint64 size);
    bool write(Pipe &pipe);
    bool noteArrived(qint64 size);
    Status problem(BodyEnd end) const;
    void takeWhole();
    void takeBack(Status status);
    void refuse(Status status, const QByteArray &text = {});
    bool mayBeKept(const UploadFile &received) override;
    void taken(const UploadFile &received) override;
    std::function<void()> whenKept() override;

    Spot spot;
    QByteArray known; ///< the id
    PartialRecord whole; ///< what it is to become
    qint64 start = 0; ///< offset
    qint64 position = 0; ///< the same, behind what was received
    bool isTaken = false; ///< the file is whole and has its name
    std::optional<UploadChecksum> checksum;
    std::shared_ptr<OpenUploads::Upload> entry; ///< null when it comes as a whole
};

} // namespace standard

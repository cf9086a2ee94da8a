#pragma once

#include "server/MultipartCutter.h"
#include "standard/http/FileTaker.h"

#include <QByteArray>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace standard {

/// POST of a form (RFC 7578) to a folder: adds the file of its first part, as the page without
/// scripts sends it, and leads back to the folder. Nothing is replaced: a name that is taken gets a
/// number.
class FormUpload final : public FileTaker
{
public:
    using FileTaker::FileTaker;

    void start() override;
    void bodySaved(BodyEnd end) override;
    std::vector<QByteArray> addedFiles() const override;

private:
    bool hasRoom() const;
    bool take(const QByteArray &piece);
    bool takeHead(const QByteArray &piece);
    bool write(const QByteArray &bytes);
    bool begin(const QByteArray &name);
    void refuse(Status status);
    std::vector<Change> changes() const;
    bool mayBeKept(const UploadFile &received) override;
    void taken(const UploadFile &received) override;

    QByteArray folder; ///< a path of the share
    QByteArray delimiter; ///< that ends the part
    QByteArray head; ///< of the form and the part, until it is whole
    std::optional<MultipartCutter> part; ///< once it is
    QByteArray target; ///< a path of the share
    Status problem = Status::BadRequest; ///< why nothing more is taken
    bool isTaken = false; ///< the file has its name
};

/// The name of a file that the lines of a part give, without folders. Empty when there is none that
/// a file may have.
QByteArray partFileName(const QByteArray &lines);

} // namespace standard

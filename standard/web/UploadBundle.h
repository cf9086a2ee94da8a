#pragma once

#include "files/MemoryBudget.h"
#include "standard/web/UploadTaker.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <vector>

namespace standard {

/// Below it a request names a folder of the share to add small files to.
constexpr auto bundlePath = ".quillon/bundle";

/// What stands in front of the content of one file.
struct BundledFile
{
    QByteArray path; ///< below the folder, see `isFilePath`; empty when there is no such file
    qint64 size = 0; ///< bytes
    bool replaces = false; ///< what has its name, if need be
    std::optional<qint64> modified = {}; ///< seconds since 1970-01-01 UTC
};

/// Reads the line, without its end. None when it can't be told how long the content is.
std::optional<BundledFile> parseBundledFile(const QByteArray &line);

/// POST to a folder: adds many small files with one request, each as a PUT of its own would, and
/// tells what became of each. When the body breaks off, those that were whole stay.
class UploadBundle final : public UploadTaker
{
public:
    using UploadTaker::UploadTaker;

    static constexpr auto contentType = "application/vnd.quillon.bundle";
    static constexpr std::size_t mostFiles = 64;
    static constexpr qint64 largest = qint64(256) * 1024; ///< bytes of a file

    void start() override;
    void bodySaved(BodyEnd end) override;
    std::vector<QByteArray> addedFiles() const override;

private:
    struct File
    {
        Spot spot;
        std::optional<Status> status; ///< none while its fate is open
        const UploadFile *received = nullptr; ///< once it is whole
    };

    bool take(const char *data, qint64 size);
    qint64 takeHead(const char *data, qint64 size);
    qint64 takeContent(const char *data, qint64 size);
    void begin(const QByteArray &line);
    std::optional<Status> beginFile(const BundledFile &wanted);
    std::optional<Status> receive(std::optional<qint64> modified);
    void putOff(const char *data, qint64 size);
    void goOn();
    std::optional<Status> whyNot(const Spot &spot, qint64 size) const;
    void finishFile();
    void giveUp(Status why);

    bool mayBeKept(const UploadFile &received) override;
    void taken(const UploadFile &received) override;
    File &fileOf(const UploadFile &received);
    void settle(File &file, Status status);
    void answerOnceSettled();

    QByteArray folder; ///< a path of the share
    QByteArray head; ///< of the next file, until it is whole
    qint64 left = 0; ///< bytes of the current file
    std::vector<File> files;
    bool isMakingFolder = false; ///< for the current file; nothing is taken meanwhile
    QByteArray rest; ///< of what came, until it can be taken
    std::optional<MemoryBudget::Part> restMemory;
    Status problem = Status::Ok; ///< with the body
    bool isBodyOver = false;
};

} // namespace standard

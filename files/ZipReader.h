#pragma once

#include "files/DiskJob.h"
#include "files/FileDescriptor.h"
#include "files/Share.h"
#include "files/ZipLayout.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class FileSums;

/// Bytes of an open file.
struct FilePart
{
    OpenDescriptor file;
    qint64 offset = 0;
    qint64 count = 0;
};

/// Gives a range of an archive, one piece at a time: the job is finished each time when there is a
/// piece to be taken, and is to be run again until it is at its end. A file that is no longer what
/// the layout says ends it. A piece is bytes, and perhaps a part of a large file behind them, which
/// the system can send by itself. Sums of such parts are made meanwhile; those of what lies before
/// the range too, unless they are known.
class ZipReader final : public DiskJob
{
public:
    static constexpr int pieceBytes = 512 * 1024;

    struct Source
    {
        std::shared_ptr<const Share> share;
        QByteArray folder; ///< a path of the share
        std::shared_ptr<const ZipLayout> layout;
        std::shared_ptr<FileSums> sums;
    };

    /// `count` bytes from `first` on; both lie within the archive.
    ZipReader(Source archive, qint64 first, qint64 count);

    bool run(const Budget &until) override;
    void abandon() override;

    bool isAtEnd() const { return part == Part::Ended; }
    bool hasFailed() const { return failed; }

    /// What was read since the last call.
    QByteArray takePiece() { return std::exchange(piece, {}); }

    /// What follows it; nothing without a file.
    FilePart takePart() { return std::exchange(filePart, {}); }

private:
    /// What comes next: three of each entry, then its record in the directory.
    enum class Part { Local, Content, Descriptor, Central, End, Ended };

    using Record = QByteArray (ZipLayout::*)(std::size_t number, quint32 sum) const;

    const ZipEntry &entry() const { return source.layout->entry(index); }
    void step(const Budget &until);
    void enter(Part next, std::size_t number);
    void append(const QByteArray &record);
    void appendSummed(Record record, Part next, const Budget &until);
    bool hasPiece() const;
    void readOn(const Budget &until);
    void giveFile(qint64 offset);
    bool sumUp(qint64 goal, const Budget &until);
    void addToSum(const char *data, qint64 count);
    bool isStillThere();
    bool read(char *to, qint64 offset, qint64 count);
    void fail();

    const Source source;
    const qint64 first; ///< offsets of the range
    const qint64 end;
    Part part = Part::Local;
    std::size_t index = 0; ///< the entry that it is about
    qint64 position = 0; ///< offset in the archive
    QByteArray piece;
    FilePart filePart;
    std::vector<std::optional<quint32>> sums; ///< of the entries, as far as they are known
    // Of the entry.
    qint64 content = 0; ///< where it begins: offset in the archive
    OpenDescriptor file; ///< once it is needed
    quint32 sum = 0; ///< of the first bytes
    qint64 summed = 0; ///< how many they are
    bool failed = false;
};

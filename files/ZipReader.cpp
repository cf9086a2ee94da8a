#include "files/ZipReader.h"

#include "files/FileSums.h"
#include "files/Path.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <new>

#include <unistd.h>

namespace {

// Many may read before they have anything to send; who has little to do need not wait for them.
constexpr std::chrono::milliseconds longestTurn(5);
constexpr qint64 settlingTime = 60; ///< seconds, until the system has written what was mapped
constexpr qint64 keptStep = qint64(64) << 20; ///< bytes, after which a sum is remembered
constexpr qint64 partBytes = qint64(8) << 20;

// What the system sends by itself is the file's own memory until the peer has read it: changed in
// place meanwhile, it arrives changed. So much of each file's end is copied, more than waits on the
// way to a peer, so that when the file is looked at for the last time all before that is there.
constexpr qint64 copiedEnd = qint64(16) << 20; ///< bytes

/// On pages of its own: to memory a few bytes off those of a file, the system copies slowly.
struct alignas(4096) Block
{
    std::array<char, qint64(128) * 1024> bytes;
};

/// What is written through a mapping, or twice within the file system's idea of a moment, changes a
/// file without another time.
bool isSettled(const EntryFacts &facts)
{
    return std::max(facts.seconds, facts.changeSeconds) + settlingTime < ::time(nullptr);
}

} // namespace

ZipReader::ZipReader(Source archive, qint64 firstByte, qint64 count)
    : source(std::move(archive))
    , first(firstByte)
    , end(firstByte + count)
    , sums(source.layout->count())
{
    const ZipLayout &layout = *source.layout;
    const bool isBehind = first >= layout.directory();
    enter(isBehind ? Part::Central : Part::Local, isBehind ? 0 : layout.entryAt(first));
    position = isBehind ? layout.directory() : entry().offset;
}

/// On a thread nobody else ends what gets no memory.
bool ZipReader::run(const Budget &until)
{
    if (!until.mayBlock())
        return false;
    const Budget turn(cancelFlag(), longestTurn, true);
    try {
        piece.reserve(pieceBytes);
        do {
            step(turn);
            if (position >= end)
                part = Part::Ended;
        } while (!hasPiece() && !turn.isUsedUp());
    } catch (const std::bad_alloc &) {
        fail();
    }
    return hasPiece();
}

void ZipReader::abandon()
{
    file.reset();
    piece.clear();
    filePart = {};
}

void ZipReader::step(const Budget &until)
{
    switch (part) {
    case Part::Local:
        append(source.layout->localRecord(index));
        content = position;
        part = Part::Content;
        return;
    case Part::Content:
        return readOn(until);
    case Part::Descriptor:
        return appendSummed(&ZipLayout::descriptor, Part::Local, until);
    case Part::Central:
        return appendSummed(&ZipLayout::centralRecord, Part::Central, until);
    case Part::End:
        return append(source.layout->end());
    case Part::Ended:
        return;
    }
}

/// Goes on with the record of an entry, behind the last one with what follows.
void ZipReader::enter(Part next, std::size_t number)
{
    file.reset();
    sum = 0;
    summed = 0;
    index = number;
    part = next;
    if (index == sums.size() && part == Part::Local) {
        part = Part::Central;
        index = 0;
    }
    if (index == sums.size()) {
        part = Part::End;
        return;
    }
    const FileSum known = sums[index] ? FileSum{ *sums[index], entry().size() }
        : entry().size() > 0          ? source.sums->find(entry().facts)
                                      : FileSum();
    sum = known.sum;
    summed = known.bytes;
    if (summed == entry().size())
        sums[index] = sum;
}

/// As far as it lies in the range.
void ZipReader::append(const QByteArray &record)
{
    const auto size = qint64(record.size());
    const qint64 from = std::clamp<qint64>(first - position, 0, size);
    const qint64 to = std::clamp<qint64>(end - position, 0, size);
    piece.append(record.constData() + from, int(to - from));
    position += size;
}

/// No sum is needed of one before the range.
void ZipReader::appendSummed(Record record, Part next, const Budget &until)
{
    const bool isWanted = position + (*source.layout.*record)(index, 0).size() > first;
    if (isWanted && !sumUp(entry().size(), until))
        return;
    append((*source.layout.*record)(index, sum));
    enter(next, index + 1);
}

/// The end of the archive counts as one.
bool ZipReader::hasPiece() const
{
    return isAtEnd() || filePart.file || piece.size() >= pieceBytes;
}

void ZipReader::readOn(const Budget &until)
{
    const qint64 behind = content + entry().size();
    position = std::max(position, std::min(first, behind));
    if (position == behind) {
        part = Part::Descriptor;
        return;
    }
    const qint64 offset = position - content;
    if (end > behind && !sumUp(offset, until))
        return;
    const qint64 left = std::min(end, behind) - position;
    if (left >= partBytes + copiedEnd)
        return giveFile(offset);
    const int before = int(piece.size());
    const qint64 count = std::min<qint64>(left, pieceBytes - before);
    piece.resize(before + int(count));
    if (!read(piece.data() + before, offset, count))
        return;
    if (summed == offset)
        addToSum(piece.constData() + before, count);
    position += count;
}

void ZipReader::giveFile(qint64 offset)
{
    if (!isStillThere())
        return fail();
    filePart = { file, offset, partBytes };
    position += partBytes;
}

/// Whether the sum is that of so many bytes, or of all; else it is to be called again.
bool ZipReader::sumUp(qint64 goal, const Budget &until)
{
    if (summed >= goal)
        return true;
    const auto block = std::make_unique<Block>();
    while (summed < goal) {
        const qint64 count = std::min<qint64>(qint64(block->bytes.size()), goal - summed);
        if (!read(block->bytes.data(), summed, count))
            return false;
        addToSum(block->bytes.data(), count);
        if (until.isUsedUp())
            return false;
    }
    return true;
}

void ZipReader::addToSum(const char *data, qint64 count)
{
    sum = summedUp(sum, data, std::size_t(count));
    const qint64 before = std::exchange(summed, summed + count);
    const bool isWhole = summed == entry().size();
    if (isWhole)
        sums[index] = sum;
    // Who was cut off, perhaps while only this went on, goes on from here.
    if ((isWhole || before / keptStep != summed / keptStep) && isSettled(entry().facts))
        source.sums->keep(entry().facts, { sum, summed });
}

/// The file, opened if it was not yet, unchanged.
bool ZipReader::isStillThere()
{
    if (!file) {
        std::optional<OpenFile> opened =
            source.share->openFile(joinedPath(source.folder, source.layout->path(index)));
        if (!opened)
            return false;
        file = std::make_shared<FileDescriptor>(std::move(opened->descriptor));
    }
    return isUntouched(entry().facts, openFacts(file->get()));
}

/// Looks at the file behind the reading, too: a change in between shows.
bool ZipReader::read(char *to, qint64 offset, qint64 count)
{
    bool isRead = file || isStillThere();
    for (qint64 done = 0; isRead && done < count;) {
        const ssize_t size =
            ::pread(file->get(), to + done, std::size_t(count - done), offset + done);
        isRead = size > 0;
        done += size;
    }
    isRead = isRead && isStillThere();
    if (!isRead)
        fail();
    return isRead;
}

void ZipReader::fail()
{
    abandon();
    failed = true;
    part = Part::Ended;
}

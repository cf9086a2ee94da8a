#include "files/PartialUpload.h"

#include "files/DiskStep.h"
#include "files/Entry.h"
#include "files/HiddenUploads.h"

#include <QList>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t newPartialMode = 0666;
constexpr mode_t privatePartialMode = 0600; ///< of what is to replace a file, which may be private
constexpr std::size_t maxRecord = 32768; ///< bytes
constexpr auto recordEnding = "about";
constexpr auto firstLine = "1"; ///< tells the form of the record
constexpr int recordLines = 6;

QByteArray recordText(const PartialRecord &record)
{
    return QList<QByteArray>{ firstLine,
                              QByteArray::number(record.length),
                              record.replaces ? "replaces" : "",
                              record.name.toBase64(),
                              record.owner.toBase64(),
                              record.notes }
        .join('\n');
}

/// Whoever may write there may have written anything.
std::optional<PartialRecord> parseRecord(const QByteArray &text)
{
    const QList<QByteArray> lines = text.split('\n');
    if (lines.size() != recordLines || lines[0] != firstLine)
        return {};
    bool isNumber = false;
    PartialRecord record;
    record.length = lines[1].toLongLong(&isNumber);
    record.replaces = !lines[2].isEmpty();
    record.name = QByteArray::fromBase64(lines[3]);
    record.owner = QByteArray::fromBase64(lines[4]);
    record.notes = lines[5];
    const bool isName = !record.name.isEmpty() && !record.name.contains('/')
        && !record.name.contains('\0') && record.name != "." && record.name != ".."
        && !isHiddenUpload(record.name.constData());
    return isNumber && record.length >= 0 && isName ? std::optional(record) : std::nullopt;
}

QByteArray readRecord(int file)
{
    std::array<char, maxRecord> text;
    const ssize_t size = ::pread(file, text.data(), text.size(), 0);
    return { text.data(), int(std::max<ssize_t>(size, 0)) };
}

FileDescriptor openIn(const Place &place, const QByteArray &name, int flags, mode_t mode = 0)
{
    return FileDescriptor(
        ::openat(place.folder.get(), name.constData(),
                 flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_LARGEFILE | O_CLOEXEC, mode));
}

QByteArray recordName(const QByteArray &id)
{
    return hiddenUploadName(id + recordEnding);
}

EntryFacts factsOf(const Place &place)
{
    return entryFacts(place.folder.get(), place.name.constData());
}

} // namespace

QByteArray PartialUpload::newId()
{
    std::array<quint32, 4> random{};
    QRandomGenerator::system()->fillRange(random.data(), int(random.size()));
    return QByteArray(reinterpret_cast<const char *>(random.data()), sizeof random).toHex();
}

bool PartialUpload::isId(const QByteArray &text)
{
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    return text.size() == 32 && std::all_of(text.begin(), text.end(), isDigit);
}

std::optional<PartialUpload> PartialUpload::begin(const Place &anyBeside, const QByteArray &id,
                                                  PartialRecord record)
{
    PartialUpload begun;
    begun.m_id = id;
    begun.hidden = beside(anyBeside, hiddenUploadName(id));
    const bool gives = factsOf(beside(anyBeside, record.name)).exists;
    const FileDescriptor content =
        openIn(begun.hidden, begun.hidden.name, O_CREAT | O_EXCL | O_WRONLY,
               gives ? privatePartialMode : newPartialMode);
    if (!content.isOpen())
        return {};
    begun.about =
        openIn(begun.hidden, recordName(id), O_CREAT | O_EXCL | O_RDWR, privatePartialMode);
    const QByteArray text = recordText(record);
    if (!begun.about.isOpen()
        || ::write(begun.about.get(), text.constData(), std::size_t(text.size())) != text.size()) {
        const int error = begun.about.isOpen() ? ENOSPC : errno;
        begun.remove();
        errno = error;
        return {};
    }
    begun.claim();
    begun.m_record = std::move(record);
    return begun;
}

std::optional<PartialUpload> PartialUpload::find(const Place &anyBeside, const QByteArray &id)
{
    PartialUpload found;
    found.m_id = id;
    found.hidden = beside(anyBeside, hiddenUploadName(id));
    found.about = openIn(found.hidden, recordName(id), O_RDONLY);
    const EntryFacts content = factsOf(found.hidden);
    if (!found.about.isOpen() || !content.file || content.link)
        return {};
    const std::optional<PartialRecord> record = parseRecord(readRecord(found.about.get()));
    if (!record)
        return {};
    found.m_record = *record;
    return found;
}

qint64 PartialUpload::offset() const
{
    return std::min(factsOf(hidden).size, std::max<qint64>(m_record.length - 1, 0));
}

qint64 PartialUpload::expires() const
{
    return factsOf(hidden).seconds + std::chrono::seconds(hiddenUploadLife).count();
}

bool PartialUpload::isGivenUp() const
{
    return expires() <= ::time(nullptr) && claim();
}

/// A file system without locks allows it.
bool PartialUpload::claim() const
{
    return ::flock(about.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

FileDescriptor PartialUpload::open(qint64 from) const
{
    FileDescriptor content = openIn(hidden, hidden.name, O_WRONLY);
    if (content.isOpen() && ::lseek(content.get(), off_t(from), SEEK_SET) < 0)
        content.reset();
    return content;
}

/// Files of its kind are swept away by their own time.
void PartialUpload::touch() const
{
    ::futimens(about.get(), nullptr);
}

void PartialUpload::remove() const
{
    for (const QByteArray &name : { hidden.name, recordName(m_id) })
        ::unlinkat(hidden.folder.get(), name.constData(), 0);
}

std::shared_ptr<DiskJob> PartialUpload::removal(std::shared_ptr<const PartialUpload> claimed)
{
    return std::make_shared<DiskStep>([upload = std::move(claimed)] { upload->remove(); });
}

std::shared_ptr<DiskJob> PartialUpload::cut(std::shared_ptr<const PartialUpload> claimed,
                                            qint64 size)
{
    return std::make_shared<DiskStep>([upload = std::move(claimed), size] {
        const FileDescriptor content = upload->open(size);
        if (!content.isOpen() || ::ftruncate(content.get(), off_t(size)) != 0)
            upload->remove();
    });
}

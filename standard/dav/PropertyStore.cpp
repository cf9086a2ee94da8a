#include "standard/dav/PropertyStore.h"

#include "standard/dav/Paths.h"

#include <QtEndian>

#include <cerrno>
#include <utility>

#include <sys/xattr.h>

namespace standard {

namespace {

constexpr auto attributeName = "user.quillon.dav";
constexpr auto formatMark = "Q1"; // then zlib's format, which has a checksum
constexpr int sizeBytes = 4;
constexpr int usualPacked = 256;
constexpr int maxPacked = PropertyStore::maxBytes + 1024;

void appendPart(QByteArray &to, const QByteArray &part)
{
    const quint32 size = qToLittleEndian(quint32(part.size()));
    to.append(reinterpret_cast<const char *>(&size), sizeBytes);
    to += part;
}

/// The part at `at`, which moves on behind it; `at` is -1 when there is no whole one.
QByteArray takePart(const QByteArray &from, int &at)
{
    if (at < 0 || from.size() - at < sizeBytes)
        return std::exchange(at, -1), QByteArray();
    const auto size = qFromLittleEndian<quint32>(from.constData() + at);
    at += sizeBytes;
    if (size > quint32(from.size() - at))
        return std::exchange(at, -1), QByteArray();
    return from.mid(std::exchange(at, at + int(size)), int(size));
}

QByteArray serialized(const DeadProperties &properties)
{
    QByteArray bytes;
    for (const DeadProperty &property : properties) {
        appendPart(bytes, property.name.space.toUtf8());
        appendPart(bytes, property.name.local.toUtf8());
        appendPart(bytes, property.xml);
    }
    return bytes;
}

/// Whether the number in front, of bytes to come, can be true: memory is taken for it.
bool hasPlausibleSize(const QByteArray &compressed)
{
    return compressed.size() > sizeBytes
        && qFromBigEndian<quint32>(compressed.constData()) <= quint32(PropertyStore::maxBytes);
}

bool isFull(int error)
{
    return error == E2BIG || error == ERANGE || diskError(error) == DiskError::NoSpace;
}

} // namespace

QByteArray packed(const DeadProperties &properties)
{
    return formatMark + qCompress(serialized(properties));
}

std::optional<DeadProperties> unpacked(const QByteArray &bytes)
{
    const QByteArray compressed = bytes.mid(int(qstrlen(formatMark)));
    if (!bytes.startsWith(formatMark) || !hasPlausibleSize(compressed))
        return std::nullopt;
    const QByteArray plain = qUncompress(compressed);
    if (plain.isEmpty())
        return std::nullopt;
    DeadProperties properties;
    for (int at = 0; at >= 0 && at < plain.size();) {
        const QString space = QString::fromUtf8(takePart(plain, at));
        const QString local = QString::fromUtf8(takePart(plain, at));
        const QByteArray xml = takePart(plain, at);
        if (at < 0)
            return std::nullopt;
        properties.push_back({ { space, local }, xml });
    }
    return properties;
}

QByteArray systemPathOf(int descriptor)
{
    return "/proc/self/fd/" + QByteArray::number(descriptor);
}

std::optional<DeadProperties> PropertyStore::read(const PropertySubject &subject) const
{
    // Nearly every file has none, which one short call tells.
    QByteArray bytes(usualPacked, Qt::Uninitialized);
    const auto get = [&subject, &bytes] {
        const auto read = subject.isLinkFree ? ::lgetxattr : ::getxattr;
        return read(subject.systemPath.constData(), attributeName, bytes.data(),
                    std::size_t(bytes.size()));
    };
    ssize_t size = get();
    if (size < 0 && errno == ERANGE) {
        bytes.resize(maxPacked);
        size = get();
    }
    if (size >= 0)
        return unpacked(bytes.left(int(size)));
    if (errno == ERANGE)
        return std::nullopt;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = memory.find(subject.path);
    return found == memory.end() ? DeadProperties() : unpacked(found->second);
}

DiskError PropertyStore::write(const PropertySubject &subject, const DeadProperties &properties)
{
    if (serialized(properties).size() > maxBytes)
        return DiskError::NoSpace;
    const char *file = subject.systemPath.constData();
    const QByteArray bytes = properties.empty() ? QByteArray() : packed(properties);
    const int result = bytes.isEmpty()
        ? ::removexattr(file, attributeName)
        : ::setxattr(file, attributeName, bytes.constData(), std::size_t(bytes.size()), 0);
    if (result == 0 || (bytes.isEmpty() && errno == ENODATA)) {
        forget(subject.path); // copied from where there are no attributes
        return DiskError::None;
    }
    if (errno == ENOTSUP)
        return remember(subject.path, bytes);
    return isFull(errno) ? DiskError::NoSpace : DiskError::Failed;
}

DiskError PropertyStore::remember(const QByteArray &path, const QByteArray &bytes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto before = memory.find(path);
    const qint64 freed = before == memory.end() ? 0 : before->second.size();
    if (memoryUsed - freed + bytes.size() > maxMemory)
        return DiskError::NoSpace;
    if (before != memory.end())
        forget(before);
    if (bytes.isEmpty())
        return DiskError::None;
    memory.emplace(path, bytes);
    memoryUsed += bytes.size();
    if (warning == Warning::NotNeeded)
        warning = Warning::Due;
    return DiskError::None;
}

bool PropertyStore::takeWarning()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (warning != Warning::Due)
        return false;
    warning = Warning::Taken;
    return true;
}

void PropertyStore::forget(const QByteArray &path)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto found = memory.find(path); found != memory.end())
        forget(found);
}

PropertyStore::Memory::iterator PropertyStore::forget(Memory::iterator at)
{
    memoryUsed -= at->second.size();
    return memory.erase(at);
}

std::vector<QByteArray> PropertyStore::pathsIn(const QByteArray &path) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<QByteArray> paths;
    if (memory.count(path) != 0)
        paths.push_back(path);
    for (auto at = firstBelow(memory, path); at != memory.end() && isBelow(at->first, path); ++at)
        paths.push_back(at->first);
    return paths;
}

void PropertyStore::removed(const QByteArray &path)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto own = memory.find(path); own != memory.end())
        forget(own);
    for (auto at = firstBelow(memory, path); at != memory.end() && isBelow(at->first, path);)
        at = forget(at);
}

/// Those that stand at `path` or below it.
PropertyStore::Memory PropertyStore::tree(const QByteArray &path) const
{
    Memory found;
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto own = memory.find(path); own != memory.end())
        found.insert(*own);
    for (auto at = firstBelow(memory, path); at != memory.end() && isBelow(at->first, path); ++at)
        found.insert(*at);
    return found;
}

void PropertyStore::copied(const QByteArray &from, const QByteArray &to)
{
    for (const auto &[path, bytes] : tree(from))
        remember(to + path.mid(from.size()), bytes);
}

/// First they go, so that there is room for them.
void PropertyStore::moved(const QByteArray &from, const QByteArray &to)
{
    const Memory going = tree(from);
    removed(from);
    for (const auto &[path, bytes] : going)
        remember(to + path.mid(from.size()), bytes);
}

} // namespace standard

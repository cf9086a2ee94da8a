#include "desktop/window/LogFile.h"

#include "files/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t ownersFile = 0600;
constexpr mode_t ownersFolder = 0700;

/// A disk that was full may have left half a line.
bool endsWithLine(int fd)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || status.st_size == 0)
        return true;
    char last = '\n';
    return ::pread(fd, &last, 1, status.st_size - 1) != 1 || last == '\n';
}

bool append(int fd, const QByteArray &lines)
{
    const QByteArray bytes = endsWithLine(fd) ? lines : '\n' + lines;
    return ::write(fd, bytes.constData(), std::size_t(bytes.size())) == bytes.size();
}

} // namespace

bool LogFile::append(const QByteArray &lines) const
{
    const QFileInfo file(path);
    const QByteArray name = QFile::encodeName(path);
    QDir().mkpath(QFileInfo(file.path()).path());
    ::mkdir(QFile::encodeName(file.path()).constData(), ownersFolder);
    if (file.size() > maxSize)
        ::rename(name.constData(), (name + ".1").constData());
    const FileDescriptor opened(
        ::open(name.constData(), O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, ownersFile));
    return opened.isOpen() && ::append(opened.get(), lines);
}

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

} // namespace

bool LogFile::append(const QByteArray &lines) const
{
    const QFileInfo file(path);
    const QByteArray name = QFile::encodeName(path);
    QDir().mkpath(QFileInfo(file.path()).path());
    ::mkdir(QFile::encodeName(file.path()).constData(), ownersFolder);
    if (file.size() > maxSize)
        ::rename(name.constData(), (name + ".1").constData());
    const FileDescriptor opened(::open(
        name.constData(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, ownersFile));
    return opened.isOpen()
        && ::write(opened.get(), lines.constData(), std::size_t(lines.size())) == lines.size();
}

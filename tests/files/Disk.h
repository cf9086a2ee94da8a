#pragma once

#include "files/DiskJob.h"
#include "files/Share.h"
#include "tests/support/Files.h"

#include <QTemporaryDir>

#include <cstddef>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/// A temporary folder, in memory where there is one, and what tests do in it by path.
class Disk
{
public:
    explicit Disk(const QString &parent = QFileInfo::exists(QStringLiteral("/dev/shm"))
                      ? QStringLiteral("/dev/shm")
                      : QDir::tempPath())
        : dir(parent + QStringLiteral("/files-XXXXXX"))
    {
    }

    QString path(const QByteArray &name) const { return dir.filePath(QFile::decodeName(name)); }
    QByteArray native(const QByteArray &name) const { return QFile::encodeName(path(name)); }
    bool exists(const QByteArray &name) const { return QFileInfo::exists(path(name)); }

    /// With the folders above it.
    void write(const QByteArray &name, const QByteArray &content = "x") const
    {
        writeFile(path(name), content);
    }
    QByteArray read(const QByteArray &name) const { return readFile(path(name)); }
    void link(const QByteArray &name, const QByteArray &target) const
    {
        QVERIFY(::symlink(target.constData(), native(name).constData()) == 0);
    }

    QString names() const { return namesIn(dir.path()); }
    Share share(const QByteArray &name = ".", const QByteArray &hidden = "../none",
                Share::Links links = Share::Links::Followed) const
    {
        return std::move(*Share::at(path(name), { path(hidden) }, links));
    }
    Place place(const QByteArray &name) const { return share().place(name); }

private:
    QTemporaryDir dir;
};

/// Lets a system call fail in the calling thread when its third argument has one of `bits`.
inline void failCall(quint32 number, quint32 error, quint32 bits)
{
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, bits, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter = { 6, program };
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    QVERIFY(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0);
}

inline void runToEnd(DiskJob &job)
{
    while (!job.run(Budget::ofWorker(job.cancelFlag()))) { }
}

#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

/// No file of this process grows beyond `size` while it lives: a disk that fills up.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{ size, before.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    Q_DISABLE_COPY(FullDisk)
    rlimit before = {};
};

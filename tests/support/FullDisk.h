#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

/// This process gets no more of a resource than `most` while it lives.
class Limited
{
public:
    Limited(decltype(RLIMIT_FSIZE) which, rlim_t most)
        : resource(which)
    {
        getrlimit(resource, &before);
        const rlimit limit{ most, before.rlim_max };
        setrlimit(resource, &limit);
    }
    ~Limited() { setrlimit(resource, &before); }

private:
    Q_DISABLE_COPY(Limited)
    const decltype(RLIMIT_FSIZE) resource;
    rlimit before = {};
};

/// No file grows beyond `size`: a disk that fills up.
struct FullDisk : Limited
{
    explicit FullDisk(rlim_t size)
        : Limited(RLIMIT_FSIZE, size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
    }
};

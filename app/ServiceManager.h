#pragma once

#include "files/FileDescriptor.h"

#include <QString>

/// The service manager that started this process, if one did: it may have opened the socket that
/// is to be listened on, and may want to hear how the service is (sd_listen_fds(3), sd_notify(3)).
/// One for the process, made in `main`. What it finds in the environment is gone from there, so
/// that no program that we start takes it for its own.
class ServiceManager
{
public:
    /// Reaches for the manager at once: a confined process could not any more.
    ServiceManager();

    /// Why nobody can be served on what was handed over; empty when all is well.
    QString problem() const { return m_problem; }

    /// The TCP socket that was handed over, which listens already; not open when there is none.
    FileDescriptor takeSocket() { return std::move(socket); }

    /// Clients are served from now on.
    void tellReady() const;

    /// The end has begun.
    void tellStopping() const;

private:
    void tell(const char *state) const;

    FileDescriptor socket;
    FileDescriptor reports;
    QString m_problem;
};

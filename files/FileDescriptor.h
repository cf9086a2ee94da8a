#pragma once

#include <memory>
#include <utility>

/// Owns a descriptor of the system and closes it at its end. Movable; empty after a move.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : fd(number)
    {
    }
    FileDescriptor(FileDescriptor &&other) noexcept
        : fd(other.release())
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        reset(other.release());
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() { reset(); }

    bool isOpen() const { return fd >= 0; }
    int get() const { return fd; }

    /// Hands the descriptor over to the caller.
    int release() { return std::exchange(fd, -1); }

    /// Closes what is open and takes `number`.
    void reset(int number = -1);

private:
    int fd = -1;
};

/// One that several send from; closed after the last of them.
using OpenDescriptor = std::shared_ptr<const FileDescriptor>;

/// One more descriptor of what is open at `descriptor`. Not open, with `errno`, when there are too
/// many.
FileDescriptor duplicate(int descriptor);

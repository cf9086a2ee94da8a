#pragma once

#include <QtGlobal>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

/// Buffers of one size that connections borrow while bytes are on their way, so that an idle one
/// has none and a busy one need not ask the allocator for each request. One serves a program.
class BufferPool
{
public:
    /// `size` in bytes; at most `most` buffers wait for their next borrower.
    BufferPool(std::size_t size, std::size_t most)
        : bufferSize(size)
        , mostKept(most)
    {
    }

    /// One of them, or none yet. Outlived by the pool.
    class Buffer
    {
    public:
        explicit Buffer(BufferPool &from)
            : pool(from)
        {
        }
        ~Buffer() { giveBack(); }

        /// From now on there is one; what stands in it is unknown.
        void borrow()
        {
            if (!bytes)
                bytes = pool.take();
        }

        void giveBack()
        {
            if (bytes)
                pool.keep(std::move(bytes));
        }

        /// Null while there is none.
        char *data() const { return bytes.get(); }

    private:
        Q_DISABLE_COPY_MOVE(Buffer)

        BufferPool &pool;
        std::unique_ptr<char[]> bytes;
    };

private:
    std::unique_ptr<char[]> take()
    {
        if (kept.empty())
            return std::unique_ptr<char[]>(new char[bufferSize]);
        std::unique_ptr<char[]> buffer = std::move(kept.back());
        kept.pop_back();
        return buffer;
    }

    void keep(std::unique_ptr<char[]> buffer)
    {
        if (kept.size() < mostKept)
            kept.push_back(std::move(buffer));
    }

    Q_DISABLE_COPY_MOVE(BufferPool)

    const std::size_t bufferSize;
    const std::size_t mostKept;
    std::vector<std::unique_ptr<char[]>> kept;
};

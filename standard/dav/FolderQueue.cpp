#include "standard/dav/FolderQueue.h"

#include <algorithm>
#include <utility>

namespace standard {

/// A folder that was entered. Those that it leads to keep it.
struct FolderQueue::Entered
{
    Entered(MemoryBudget &budget, Next which, const EntryFacts &facts)
        : self(std::move(which))
        , device(facts.device)
        , inode(facts.inode)
        , memory(budget, 0)
    {
    }

    bool charge()
    {
        return memory.resize(qint64(sizeof *this) + qint64(self.name.capacity())
                             + qint64(folders.capacity()));
    }

    const Next self;
    const dev_t device;
    const ino_t inode;
    std::string folders; ///< in it, that are to be listed: names, each with a NUL
    std::size_t next = 0; ///< where the first of them begins
    MemoryBudget::Part memory;
};

QByteArray FolderQueue::Next::path() const
{
    std::size_t size = 0;
    for (const Next *each = this; each; each = each->above ? &each->above->self : nullptr)
        size += each->name.size();
    QByteArray path(int(size), Qt::Uninitialized);
    char *begin = path.data() + size;
    for (const Next *each = this; each; each = each->above ? &each->above->self : nullptr) {
        begin -= each->name.size();
        std::copy(each->name.begin(), each->name.end(), begin);
    }
    return path;
}

bool FolderQueue::enter(const Next &next, const EntryFacts &facts)
{
    entered = std::make_shared<Entered>(own, next, facts);
    for (const Entered *each = next.above.get(); each; each = each->self.above.get()) {
        if (each->device == facts.device && each->inode == facts.inode)
            return false;
    }
    return true;
}

bool FolderQueue::add(const char *name)
{
    if (entered->folders.empty())
        waiting.push_back(entered);
    entered->folders.append(name).push_back('\0');
    return entered->charge() && charge();
}

FolderQueue::Next FolderQueue::take()
{
    const std::shared_ptr<Entered> from = waiting.front();
    const std::string name = from->folders.c_str() + from->next;
    from->next += name.size() + 1;
    if (from->next == from->folders.size()) {
        from->folders = std::string();
        from->charge();
        waiting.pop_front();
    }
    charge();
    return { name + '/', from };
}

bool FolderQueue::charge()
{
    return place.resize(maxBytes - own.unused());
}

} // namespace standard

#include "files/ShareParts.h"

#include <iterator>

std::shared_ptr<const Share> ShareParts::part(const std::shared_ptr<const Share> &whole,
                                              const QByteArray &path)
{
    std::shared_ptr<const Share> found = inUse.value(path).lock();
    if (found && found->whole() == whole && found->stillStands())
        return found;
    forgetUnused();
    found = Share::partOf(whole, path);
    inUse.insert(path, found);
    return found;
}

void ShareParts::forgetUnused()
{
    for (auto each = inUse.begin(); each != inUse.end();)
        each = each->expired() ? inUse.erase(each) : std::next(each);
}

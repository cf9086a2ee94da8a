#include "standard/dav/Paths.h"

namespace standard {

std::vector<QByteArray> withAncestors(const QByteArray &path)
{
    std::vector<QByteArray> paths{ QByteArray("") };
    for (auto end = path.indexOf('/'); end >= 0; end = path.indexOf('/', end + 1))
        paths.push_back(QByteArray::fromRawData(path.constData(), end));
    if (!path.isEmpty())
        paths.push_back(path);
    return paths;
}

} // namespace standard

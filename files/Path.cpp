#include "files/Path.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <vector>

#include <climits>
#include <unistd.h>

QByteArray nativePath(const QString &path)
{
    return QFile::encodeName(path);
}

QByteArray cleanPath(const QByteArray &requested)
{
    QByteArray clean;
    clean.reserve(requested.size());
    std::string_view rest(requested.constData(), std::size_t(requested.size()));
    while (!rest.empty()) {
        const std::string_view segment = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(segment.size() + 1, rest.size()));
        if (segment == "..") {
            const auto slash = clean.lastIndexOf('/');
            clean.truncate(slash < 0 ? 0 : slash);
        } else if (!segment.empty() && segment != ".") {
            if (!clean.isEmpty())
                clean += '/';
            clean.append(segment.data(), int(segment.size()));
        }
    }
    return clean;
}

QByteArray parentPath(const QByteArray &path)
{
    return path.left(std::max(0, int(path.lastIndexOf('/'))));
}

QByteArray joinedPath(const QByteArray &folder, const QByteArray &rest)
{
    const bool isJoined = folder.isEmpty() || rest.isEmpty() || folder.endsWith('/');
    return isJoined ? folder + rest : folder + '/' + rest;
}

QByteArray longestPart(const QByteArray &path,
                       const std::function<bool(const QByteArray &part)> &holds)
{
    std::vector<int> ends{ 0 };
    for (int slash = int(path.indexOf('/')); slash >= 0; slash = int(path.indexOf('/', slash + 1)))
        ends.push_back(slash);
    ends.push_back(int(path.size()));
    const auto failing = std::partition_point(std::next(ends.begin()), ends.end(),
                                              [&](int end) { return holds(path.left(end)); });
    return path.left(*std::prev(failing));
}

QByteArray shortenedName(QByteArray name, int most)
{
    const auto isContinued = [&name](int at) { return (name.at(at) & 0xc0) == 0x80; };
    int size = std::min(most, int(name.size()));
    while (size > 0 && size < name.size() && isContinued(size))
        --size;
    name.truncate(size);
    return name;
}

QByteArray numberedPath(const QByteArray &path, int number)
{
    const int name = int(path.lastIndexOf('/')) + 1;
    const int dot = int(path.lastIndexOf('.'));
    const int end = dot > name ? dot : int(path.size());
    const QByteArray rest = " (" + QByteArray::number(number) + ')' + path.mid(end);
    const int room = std::max(0, NAME_MAX - int(rest.size()));
    return path.left(name) + shortenedName(path.mid(name, end - name), room) + rest;
}

bool isSpellable(const QByteArray &name)
{
    const bool plain = std::none_of(name.cbegin(), name.cend(), [](char c) { return c < 0; });
    if (plain)
        return true;
    const QString text = QFile::decodeName(name);
    return !text.contains(QChar::ReplacementCharacter) || QFile::encodeName(text) == name;
}

QByteArray caselessPath(const QByteArray &path)
{
    return QString::fromUtf8(path).toCaseFolded().toUtf8();
}

QByteArray pathOf(int descriptor)
{
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(descriptor);
    std::array<char, PATH_MAX> path;
    const ssize_t size = ::readlink(link.constData(), path.data(), path.size());
    if (size <= 0 || std::size_t(size) == path.size())
        return {};
    return { path.data(), int(size) };
}

bool isWithin(const QByteArray &path, const QByteArray &folder)
{
    if (folder == "/")
        return path.startsWith('/');
    return path.startsWith(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

QByteArray pathBelow(const QByteArray &path, const QByteArray &folder)
{
    return path.mid(folder == "/" ? 1 : folder.size() + 1);
}

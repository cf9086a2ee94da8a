#include "classic/listing/Mfind.h"

#include "classic/pages/Entry.h"
#include "classic/pages/ShareDir.h"
#include "config/Configuration.h"

#include <QDirIterator>
#include <QElapsedTimer>

#include <queue>
#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds sliceTime = 2ms;
constexpr int sliceBytes = 64 * 1024;

/// What a folder's listing holds: files, folders, and links to anything that exists.
bool isListed(const QFileInfo &entry)
{
    return (entry.isFile() || entry.isDir() || (entry.isSymLink() && entry.exists()))
        && entry.isReadable();
}

/// A line break in a name would read as the start of another record.
bool fitsOneLine(const QString &name)
{
    return !name.contains(QLatin1Char('\n')) && !name.contains(QLatin1Char('\r'));
}

struct Name
{
    QString key; ///< lower case
    QString name;
};

/// Clients show entries in the order they come: by name, in any case.
struct ComesLater
{
    bool operator()(const Name &left, const Name &right) const
    {
        const int order = left.key.compare(right.key);
        return order > 0 || (order == 0 && left.name > right.name);
    }
};

} // namespace

/// A folder that is being listed. All of its names are read before the first is sent; they are
/// sorted as they go, a heap, so that no slice has to sort a large folder whole.
struct Mfind::Folder
{
    QString path; ///< ends in "/"
    QByteArray prefix; ///< what its lines begin with, ends in "/"
    QString canonicalPath;
    std::unique_ptr<QDirIterator> unread; ///< null once all names were read
    std::priority_queue<Name, std::vector<Name>, ComesLater> names; ///< yet to be sent
};

Mfind::Mfind(HTTP_Request *httpRequest)
    : Response(httpRequest)
{
    connect(&request->channel, &MobileSocket::drained, this, &Mfind::resume);
    connect(&request->channel, &MobileSocket::replyEnded, this, &Mfind::stop);
}

Mfind::~Mfind() = default;

void Mfind::reply(const QFileInfo &shared, Configuration *profile)
{
    stop();
    const QString previews = request->field("i");
    if (!previews.isEmpty())
        return switchThumbnails(profile, previews == QLatin1String("1"));

    filter.init(request->url);
    thumbnails = profile->isThumbnail();
    showHidden = request->getClientData()->showHidden;
    list(QFileInfo(shared.absoluteFilePath() + request->path));
}

void Mfind::switchThumbnails(Configuration *profile, bool on)
{
    profile->showImages = on ? Qt::Checked : Qt::Unchecked;
    request->channel.write({}, true);
}

void Mfind::list(const QFileInfo &target)
{
    const QByteArray prefix = request->path.toUtf8();
    const bool possible = !request->path.contains(QChar::Null);
    const EntryFacts facts = possible ? entryFacts(target.filePath()) : EntryFacts();
    if (!facts.exists)
        return finish();

    if (prefix.endsWith('/')) {
        sendDir(prefix, target.filePath(), target.canonicalFilePath());
        state = State::Walking;
        return walk();
    }
    sendFile(prefix, target, facts);
    request->channel.write(std::exchange(buffer, {}), true);
}

void Mfind::sendDir(const QByteArray &prefix, const QString &path, const QString &canonicalPath)
{
    Folder folder;
    folder.path = path;
    folder.prefix = prefix;
    folder.canonicalPath = canonicalPath;
    // Everything, so that no step has to pass over many entries: `readName` chooses.
    folder.unread = std::make_unique<QDirIterator>(
        path, QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    folders.push_back(std::move(folder));
}

void Mfind::sendFile(const QByteArray &prefix, const QFileInfo &file, const EntryFacts &facts)
{
    addLine(buffer, QByteArray::number(facts.size));
    addLine(buffer, QByteArray::number(clientTime(facts.modified)));
    addLine(buffer, thumbnails ? picture(prefix, file, facts) : QByteArray());
}

void Mfind::sendEntry(const QString &name)
{
    const Folder &folder = folders.back();
    const QFileInfo entry(folder.path + name);
    const EntryFacts facts = entryFacts(entry.filePath());
    if (!facts.exists || !filter.accept(name, facts))
        return;

    const QByteArray line = folder.prefix + name.toUtf8();
    if (facts.folder)
        return sendFolder(line + '/', entry, facts);
    addLine(buffer, line);
    sendFile(folder.prefix, entry, facts);
}

void Mfind::sendFolder(const QByteArray &line, const QFileInfo &entry, const EntryFacts &facts)
{
    if (!filter.isRecursive()) {
        addLine(buffer, line);
        addLine(buffer, QByteArray::number(clientTime(facts.modified)));
        return;
    }
    const QString canonicalPath = entry.canonicalFilePath();
    if (!isOnPath(canonicalPath))
        sendDir(line, entry.filePath() + QLatin1Char('/'), canonicalPath);
}

QByteArray Mfind::picture(const QByteArray &prefix, const QFileInfo &file,
                          const EntryFacts &facts) const
{
    HTML_Element_Manager &manager = ShareDir::HTML_Manager;
    const HTML_Element element = folders.empty()
        ? manager.toHTML(file)
        : manager.toHTML(file, facts, folders.back().canonicalPath);
    QByteArray reference;
    element.toMC(&reference, prefix.left(prefix.lastIndexOf('/') + 1));
    return reference;
}

/// Links may lead back to a folder that is being listed; entering it again would never end.
bool Mfind::isOnPath(const QString &canonicalPath) const
{
    return std::any_of(folders.cbegin(), folders.cend(), [&canonicalPath](const Folder &folder) {
        return folder.canonicalPath == canonicalPath;
    });
}

void Mfind::readName(Folder &folder) const
{
    if (!folder.unread->hasNext())
        return folder.unread.reset();

    folder.unread->next();
    const QString name = folder.unread->fileName();
    const bool visible = showHidden || !name.startsWith(QLatin1Char('.'));
    if (visible && isListed(folder.unread->fileInfo()) && fitsOneLine(name))
        folder.names.push({ name.toLower(), name });
}

void Mfind::step()
{
    Folder &folder = folders.back();
    if (folder.unread)
        return readName(folder);
    if (folder.names.empty())
        return folders.pop_back();

    const QString name = folder.names.top().name;
    folder.names.pop();
    sendEntry(name);
}

void Mfind::walk()
{
    scheduled = false;
    if (state != State::Walking)
        return;

    QElapsedTimer clock;
    clock.start();
    while (!folders.empty() && buffer.size() < sliceBytes && !clock.hasExpired(sliceTime.count()))
        step();
    if (folders.empty())
        return finish();

    request->channel.write(std::exchange(buffer, {}), false);
    if (state != State::Walking)
        return; // the connection broke
    if (request->channel.isCongested())
        state = State::Paused;
    else
        schedule();
}

void Mfind::schedule()
{
    // Queued: other clients are served before the next slice.
    if (!std::exchange(scheduled, true))
        QMetaObject::invokeMethod(this, &Mfind::walk, Qt::QueuedConnection);
}

void Mfind::resume()
{
    if (state != State::Paused)
        return;
    state = State::Walking;
    schedule();
}

void Mfind::finish()
{
    addLine(buffer);
    request->channel.write(std::exchange(buffer, {}), true);
}

void Mfind::stop()
{
    folders.clear();
    buffer.clear();
    state = State::Idle;
}

#include "classic/listing/ClientListing.h"

#include "classic/pages/BrowserPages.h"
#include "classic/pages/Entry.h"
#include "config/Profile.h"

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
struct ClientListing::Folder
{
    QString path; ///< ends in "/"
    QByteArray prefix; ///< what its lines begin with, ends in "/"
    QString canonicalPath;
    std::unique_ptr<QDirIterator> unread; ///< null once all names were read
    std::priority_queue<Name, std::vector<Name>, ComesLater> names; ///< yet to be sent
};

ClientListing::ClientListing(Request *httpRequest)
    : Responder(httpRequest)
{
    connect(&request->channel, &Channel::drained, this, &ClientListing::resume);
    connect(&request->channel, &Channel::replyEnded, this, &ClientListing::stop);
}

ClientListing::~ClientListing() = default;

void ClientListing::reply(const QFileInfo &shared, Profile *profile)
{
    stop();
    const QString previews = request->field("i");
    if (!previews.isEmpty())
        return switchThumbnails(profile, previews == QLatin1String("1"));

    filter.init(request->url);
    thumbnails = profile->showsThumbnails();
    showHidden = request->session()->showHidden;
    list(QFileInfo(shared.absoluteFilePath() + request->path));
}

void ClientListing::switchThumbnails(Profile *profile, bool on)
{
    profile->showImages = on ? Qt::Checked : Qt::Unchecked;
    request->channel.write({}, true);
}

void ClientListing::list(const QFileInfo &target)
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

void ClientListing::sendDir(const QByteArray &prefix, const QString &path,
                            const QString &canonicalPath)
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

void ClientListing::sendFile(const QByteArray &prefix, const QFileInfo &file,
                             const EntryFacts &facts)
{
    addLine(buffer, QByteArray::number(facts.size));
    addLine(buffer, QByteArray::number(clientTime(facts.modified)));
    addLine(buffer, thumbnails ? picture(prefix, file, facts) : QByteArray());
}

void ClientListing::sendEntry(const QString &name)
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

void ClientListing::sendFolder(const QByteArray &line, const QFileInfo &entry,
                               const EntryFacts &facts)
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

QByteArray ClientListing::picture(const QByteArray &prefix, const QFileInfo &file,
                                  const EntryFacts &facts) const
{
    HTML_Element_Manager &manager = BrowserPages::previews;
    const ListedEntry element = folders.empty()
        ? manager.toHTML(file)
        : manager.toHTML(file, facts, folders.back().canonicalPath);
    QByteArray reference;
    element.toMC(&reference, prefix.left(prefix.lastIndexOf('/') + 1));
    return reference;
}

/// Links may lead back to a folder that is being listed; entering it again would never end.
bool ClientListing::isOnPath(const QString &canonicalPath) const
{
    return std::any_of(folders.cbegin(), folders.cend(), [&canonicalPath](const Folder &folder) {
        return folder.canonicalPath == canonicalPath;
    });
}

void ClientListing::readName(Folder &folder) const
{
    if (!folder.unread->hasNext())
        return folder.unread.reset();

    folder.unread->next();
    const QString name = folder.unread->fileName();
    const bool visible = showHidden || !name.startsWith(QLatin1Char('.'));
    if (visible && isListed(folder.unread->fileInfo()) && fitsOneLine(name))
        folder.names.push({ name.toLower(), name });
}

void ClientListing::step()
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

void ClientListing::walk()
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

void ClientListing::schedule()
{
    // Queued: other clients are served before the next slice.
    if (!std::exchange(scheduled, true))
        QMetaObject::invokeMethod(this, &ClientListing::walk, Qt::QueuedConnection);
}

void ClientListing::resume()
{
    if (state != State::Paused)
        return;
    state = State::Walking;
    schedule();
}

void ClientListing::finish()
{
    addLine(buffer);
    request->channel.write(std::exchange(buffer, {}), true);
}

void ClientListing::stop()
{
    folders.clear();
    buffer.clear();
    state = State::Idle;
}

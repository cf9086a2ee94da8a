#include "classic/pages/HTML_Element_Manager.h"

#include <QDir>
#include <QThread>

namespace {

/// `QFileInfo::canonicalFilePath` of an entry, which walks the whole path only for links.
QString keyOf(const QFileInfo &entry, const EntryFacts &facts, const QString &canonicalFolder)
{
    if (facts.link)
        return entry.canonicalFilePath();
    const QLatin1Char slash('/');
    return canonicalFolder.endsWith(slash) ? canonicalFolder + entry.fileName()
                                           : canonicalFolder + slash + entry.fileName();
}

} // namespace

HTML_Element_Manager::HTML_Element_Manager() = default;

HTML_Element_Manager::~HTML_Element_Manager()
{
    clear();
}

ListedEntry HTML_Element_Manager::toHTML(const QFileInfo &entry)
{
    ListedEntry element(entry);
    if (!element.isReady())
        addPreview(element, entry, entry.canonicalFilePath());
    return element;
}

ListedEntry HTML_Element_Manager::toHTML(const QFileInfo &entry, const EntryFacts &facts,
                                         const QString &canonicalFolder)
{
    ListedEntry element(entry, facts);
    if (!element.isReady())
        addPreview(element, entry, keyOf(entry, facts, canonicalFolder));
    return element;
}

void HTML_Element_Manager::addPreview(ListedEntry &element, const QFileInfo &entry,
                                      const QString &key)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto finished = done.constFind(key);
    if (finished != done.constEnd())
        element.takePreview(*finished);
    else if (!waiting.contains(key))
        enqueue({ key, entry.absoluteFilePath() });
}

/// The caller holds the lock.
void HTML_Element_Manager::enqueue(const Job &job)
{
    pending.push_back(job);
    waiting.insert(job.key);
    if (running)
        return;
    // One that no longer runs is about to end and takes the lock no more.
    if (worker)
        worker->wait();
    worker.reset(QThread::create([this] { run(); }));
    running = true;
    worker->start(QThread::LowestPriority);
}

void HTML_Element_Manager::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    while (!pending.empty()) {
        const Job job = pending.front();
        pending.pop_front();
        lock.unlock();
        // Made here and published whole: no other thread sees it before it is finished.
        ListedEntry element{ QFileInfo(job.path) };
        if (!element.isReady())
            element.init();
        lock.lock();
        waiting.remove(job.key);
        done.insert(job.key, element);
    }
    running = false;
}

QString HTML_Element_Manager::getTempFile(const QString &path)
{
    const QString key = QFileInfo(path).canonicalFilePath();
    const std::lock_guard<std::mutex> lock(mutex);
    const auto finished = done.constFind(key);
    return finished != done.constEnd() ? finished->tempFileName() : QString();
}

void HTML_Element_Manager::removeLeftFiles()
{
    QDir folder(ListedEntry::previewFolder());
    const QStringList files = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &file : files)
        folder.remove(file);
}

void HTML_Element_Manager::clear()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        pending.clear();
    }
    if (worker) {
        worker->requestInterruption();
        worker->wait();
    }
    worker.reset();
    const std::lock_guard<std::mutex> lock(mutex);
    waiting.clear();
    done.clear();
}

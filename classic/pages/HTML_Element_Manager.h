#pragma once

#include "classic/pages/ListedEntry.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <deque>
#include <memory>
#include <mutex>

class QThread;

/// Makes the previews of large pictures, one at a time on a thread of the lowest priority, and
/// keeps them until `clear`. One serves the whole process. The thread lives only while pictures
/// wait; programs call `clear` before they end, so that it never outlives them.
class HTML_Element_Manager
{
public:
    HTML_Element_Manager();
    ~HTML_Element_Manager();

    /// The element of an entry as it is now. A large picture that is seen for the first time is
    /// queued for its preview; nothing waits for it.
    ListedEntry toHTML(const QFileInfo &entry);

    /// The same for callers that list many entries: `facts` are those of the entry,
    /// `canonicalFolder` is its folder's `QFileInfo::canonicalFilePath`.
    ListedEntry toHTML(const QFileInfo &entry, const EntryFacts &facts,
                       const QString &canonicalFolder);

    /// The preview file of the picture at `path`; empty when it has none (yet).
    QString getTempFile(const QString &path);

    /// Removes the preview files that a run left behind which ended abnormally.
    static void removeLeftFiles();

    /// Forgets all elements and removes the preview files. Waits for the end of the picture in
    /// work, which is given up.
    void clear();

private:
    Q_DISABLE_COPY_MOVE(HTML_Element_Manager)

    struct Job
    {
        QString key;
        QString path;
    };

    void addPreview(ListedEntry &element, const QFileInfo &entry, const QString &key);
    void enqueue(const Job &job);
    void run();

    std::mutex mutex; ///< guards what follows, but for `worker`, which only the event loop uses
    std::deque<Job> pending; ///< pictures without preview, in the order of their work
    QSet<QString> waiting; ///< the keys of `pending` and of the picture in work
    QHash<QString, ListedEntry> done; ///< ready elements of large pictures by canonical path
    bool running = false; ///< the worker has not yet found `pending` empty
    std::unique_ptr<QThread> worker;
};

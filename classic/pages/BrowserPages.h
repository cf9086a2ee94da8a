#pragma once

#include "classic/pages/HTML_Element_Manager.h"
#include "classic/pages/Pages.h"
#include "server/FileReply.h"

/// Serves the shared folder to browsers: listings, forms, launch pages and what they ask for.
/// Kept by its connection for the next request; all that outlives a request is in the session.
class BrowserPages : public FileReply
{
    Q_OBJECT
public:
    /// Makes and keeps the previews for all servers of the process.
    static HTML_Element_Manager previews;

    /// Both are borrowed and outlive the connection.
    BrowserPages(Profile *profile, Request *request);

    using FileReply::reply;
    void reply(const QFileInfo &shared) override;

    /// An upload has ended: shows how, atop the listing of its folder.
    void reply(int result) override;

private:
    /// What a posted action leaves to do.
    enum class Then {
        Nothing, ///< it has answered
        ServePath ///< its effect shows in what the path gives
    };

    struct PostAction
    {
        const char *value; ///< of the field "a"
        Then (BrowserPages::*act)();
    };

    static const PostAction *findAction(const QString &value);

    Then act(const QString &value);
    Then sendUpload();
    Then sendFileBrowser();
    Then sendJNLP();
    Then sendCreate();
    Then setItemsPerPage();
    Then sortByName() { return sortBy(SessionData::ByName); }
    Then sortBySize() { return sortBy(SessionData::BySize); }
    Then sortByTime() { return sortBy(SessionData::ByTime); }
    Then sortBy(SessionData::SortMode mode);
    Then deleteSelected();
    Then createFolder();
    Then receiveUpload();
    Then goOn() { return Then::ServePath; }
    Then refuse();

    void servePath();
    void sendDir(const QString &folder);
    void sendPage(const QByteArray &status, const QByteArray &page);
    void sendBody(const QByteArray &status, const QByteArray &body, const QByteArray &extra = {});
    void removeEntry(const QString &field, const QString &name);
    QString diskPath() const;
    ClientLaunch launch() const;

    bool deleteAllowed = false;
    int removedCount = 0; ///< by the current delete action
    bool thumbnails = false;
    QString root; ///< absolute path of the shared folder
};

#pragma once

#include "classic/pages/HTML_Element_Manager.h"
#include "classic/pages/Pages.h"
#include "server/HTTP_Response.h"

/// Serves the shared folder to browsers: listings, forms, launch pages and what they ask for.
/// Kept by its connection for the next request; all that outlives a request is in the session.
class ShareDir : public HTTP_Response
{
    Q_OBJECT
public:
    /// Makes and keeps the previews for all servers of the process.
    static HTML_Element_Manager HTML_Manager;

    /// Both are borrowed and outlive the connection.
    ShareDir(Configuration *profile, HTTP_Request *request);

    using HTTP_Response::reply;
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
        Then (ShareDir::*act)();
    };

    static const PostAction *findAction(const QString &value);

    Then act(const QString &value);
    Then sendUpload();
    Then sendFileBrowser();
    Then sendJNLP();
    Then sendCreate();
    Then setItemsPerPage();
    Then sortByName() { return sortBy(ClientData::ByName); }
    Then sortBySize() { return sortBy(ClientData::BySize); }
    Then sortByTime() { return sortBy(ClientData::ByTime); }
    Then sortBy(ClientData::SortMode mode);
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

#pragma once

#include "classic/http/FileReply.h"
#include "classic/pages/ListingReply.h"
#include "classic/pages/Pages.h"

class SelectionRemoval;

/// Serves the shared folder to browsers: listings, forms, launch pages and what they ask for.
/// Kept by its face for the next request; all that outlives a request is in the session.
class BrowserPages final : public FileReply
{
    Q_OBJECT
public:
    explicit BrowserPages(Exchange &current);

    void reply() override;
    void drained() override { listing.drained(); }
    void replyEnded() override { listing.stop(); }

protected:
    /// Shows how an upload ended, atop the listing of its folder.
    void uploadDone(SaveResult result) override;

private:
    /// What a posted action leaves to do.
    enum class Then {
        Nothing, ///< it has answered, or will
        ServePath ///< its effect shows in what the path gives
    };

    struct PostAction
    {
        const char *value; ///< of the field "a"
        Then (BrowserPages::*act)();
        const char *refusal = nullptr; ///< while uploads are off; null: it is none
    };

    static const PostAction *findAction(const QString &value);

    Then act();
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
    void selectionRemoved(const SelectionRemoval &removal);
    Then createFolder();
    void folderMade(bool isMade);
    Then receiveUpload();
    Then goOn() { return Then::ServePath; }

    void servePath();
    void sendEntry();
    void sendPreview(const QString &pathOnDisk);
    void sendPage(const QByteArray &page);
    void tell(const QByteArray &message);
    QString pathOnDisk() const;
    ClientLaunch launch();

    ListingReply listing;
};

#pragma once

#include "classic/dav/DocumentReply.h"
#include "classic/dav/ResourceMarkup.h"

#include <memory>

class FolderListing;

/// PROPFIND: one resource, or the entries of one folder, with a fixed set of properties.
/// What the client asked for is not looked at; there is no recursion.
class PropFind : public DocumentReply
{
    Q_OBJECT
public:
    explicit PropFind(Exchange &current);
    ~PropFind() override;

    void reply() override;
    void replyEnded() override;

private:
    using Listing = std::shared_ptr<const FolderListing>;

    QString askedPath() const;
    QByteArray askedPrefix() const;
    QByteArray baseUrl() const;
    void listFolder(const QByteArray &path, const QByteArray &href);
    void sendResource(const Resource &resource);
    void sendEntries(const Listing &listing, const QByteArray &href);
    void sendResources(qint64 count, std::function<void(QByteArray &text, qint64 index)> append);
    void stopListing();

    ResourceMarkup markup;
    std::unique_ptr<QObject> waiting; ///< for the listing; nothing is told once it is gone
};

#include "classic/pages/ListingReply.h"

#include "classic/http/Exchange.h"
#include "classic/http/Status.h"
#include "classic/pages/SharedPreviews.h"
#include "config/Profile.h"
#include "files/ListingCache.h"
#include "files/Path.h"

#include <QDir>

#include <algorithm>
#include <utility>

#include <fcntl.h>

namespace {

ListingShape::Order orderOf(int sortMode)
{
    switch (sortMode) {
    case SessionData::ByTime:
        return ListingShape::Order::NewestFirst;
    case SessionData::BySize:
        return ListingShape::Order::LargestFirst;
    default:
        return ListingShape::Order::ByName;
    }
}

} // namespace

ListingReply::ListingReply(Exchange &current, SendHead headSender)
    : exchange(current)
    , sendHead(std::move(headSender))
    , slices(current, [this](const Turn &turn) { return work(turn); })
{
}

void ListingReply::start()
{
    stop();
    share = exchange.service.share;
    state = State::Waiting;
    slices.start();
}

void ListingReply::list()
{
    state = State::Reading;
    slices.pause();
    reading = std::make_unique<QObject>();
    exchange.service.setup.listings->list(
        openFolder(), shape(), window(), reading.get(),
        [this](const ListingCache::Listing &listing) { show(listing); });
}

/// What can be seen at all: folders only while they may be browsed.
ListingShape ListingReply::shape() const
{
    const SessionData &session = *exchange.session();
    ListingShape shape;
    shape.order = orderOf(session.sortMode);
    shape.folders = exchange.service.profile->showsFolders();
    shape.hidden = session.showHidden;
    shape.unreadable = !shape.folders;
    return shape;
}

FolderReader ListingReply::openFolder() const
{
    std::optional<FolderReader> reader;
    if (share)
        reader = share->openFolder(nativePath(exchange.request.path));
    return reader ? std::move(*reader) : FolderReader(FileDescriptor());
}

FolderListing::Window ListingReply::window() const
{
    const SessionData &session = *exchange.session();
    const qint64 perPage = std::max(1, session.itemsPerPage);
    return { std::max(0, session.page) * perPage, perPage };
}

void ListingReply::show(const std::shared_ptr<const FolderListing> &listing)
{
    if (!listing)
        return exchange.channel.abort();
    // The message of the session is for a page that somebody gets.
    if (!exchange.channel.canAnswer())
        return exchange.channel.end();
    // A page that does not exist becomes the first one.
    if (window().first >= listing->count())
        exchange.session()->page = 0;
    if (!listing->covers(window()))
        return list();

    page = std::make_unique<ListingPage>(listing, takeOptions());
    const Profile &profile = *exchange.service.profile;
    if (profile.showsThumbnails() && share)
        folder = share->open(nativePath(exchange.request.path), O_PATH | O_DIRECTORY);
    toLookAt = folder.isOpen() ? page->shownCount() : 0;
    state = State::Looking;
    slices.resume();
}

/// Uses the session's message up.
ListingPage::Options ListingReply::takeOptions() const
{
    const Profile &profile = *exchange.service.profile;
    SessionData &session = *exchange.session();
    const QString &path = exchange.request.path;
    ListingPage::Options options;
    options.urlPath = path;
    options.diskFolder = QDir::cleanPath(exchange.service.shared.absoluteFilePath() + path);
    options.message = std::exchange(session.message, {});
    options.sortMode = session.sortMode;
    options.itemsPerPage = session.itemsPerPage;
    options.pageIndex = std::max(0, session.page);
    options.pictures = profile.showsThumbnails();
    options.deleting = profile.allowsDelete();
    options.uploading = profile.allowsUpload();
    return options;
}

bool ListingReply::work(const Turn &turn)
{
    if (state == State::Waiting)
        list();
    while (isWorking() && !turn.isOver() && !exchange.channel.isCongested())
        step();
    return state != State::Idle;
}

bool ListingReply::isWorking() const
{
    return state == State::Looking || state == State::Counting || state == State::Sending;
}

void ListingReply::step()
{
    if (state == State::Looking)
        look();
    else if (state == State::Counting)
        count();
    else
        send();
}

/// From the end of the page on: what is asked for last is made first.
void ListingReply::look()
{
    if (toLookAt == 0) {
        folder.reset();
        state = State::Counting;
        return;
    }
    const FolderListing::Entry entry = page->shown(--toLookAt);
    const ListedEntry listed(entry);
    if (!entry.readable || !listed.needsPreview())
        return;
    const QByteArray path = nativePath(exchange.request.path) + '/' + entry.name;
    const EntryFacts facts = entryFacts(folder.get(), entry.name.constData());
    page->setPreview(toLookAt,
                     askForPreview(exchange.service.setup.previews, share, path, facts,
                                   listed.extension(), Urgency::InView));
}

/// Only a small page is kept meanwhile; others are made a second time.
void ListingReply::count()
{
    const auto before = buffer.size();
    const bool more = page->addNext(&buffer);
    length += buffer.size() - before;
    if (length > Slices::keptBytes)
        buffer.resize(0);
    if (!more)
        sendHeadOrAll();
}

void ListingReply::sendHeadOrAll()
{
    const QByteArray whole = std::exchange(buffer, {});
    sendHead(page->isComplete() ? Status::ok : "202 Accepted", length);
    if (length <= Slices::keptBytes)
        return exchange.channel.write(whole, true);
    page->restart();
    state = State::Sending;
}

void ListingReply::send()
{
    bool more = true;
    while (more && buffer.size() < Slices::pieceBytes)
        more = page->addNext(&buffer);
    const QByteArray piece = std::exchange(buffer, {});
    exchange.channel.write(piece, !more);
}

void ListingReply::stop()
{
    slices.stop();
    reading.reset();
    page.reset();
    folder.reset();
    share.reset();
    buffer.clear();
    length = 0;
    state = State::Idle;
}

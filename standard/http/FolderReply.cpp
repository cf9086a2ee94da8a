#include "standard/http/FolderReply.h"

#include "config/Profile.h"
#include "files/Share.h"
#include "server/Secret.h"
#include "standard/http/AppFiles.h"
#include "standard/http/LoginPage.h"
#include "standard/http/Protection.h"
#include "standard/http/Reserved.h"

#include <cerrno>
#include <utility>

namespace standard {

namespace {

constexpr int pieceBytes = 64 * 1024;

} // namespace

void FolderReply::start()
{
    if (isDropBox())
        return sendPage(nullptr);
    if (!isPermitted(Right::See, exchange.path()) || !exchange.mayChange({}))
        return;
    if (!exchange.service().profile->showsFolders())
        return exchange.refuse(Status::Forbidden, "Folders are not listed here.");
    std::optional<FolderReader> folder = share()->openFolder(exchange.path());
    if (!folder)
        return exchange.refuse(statusOf(errno));
    exchange.service().setup.listings->list(
        std::move(*folder), ListingShape(), { 0, maxPageEntries }, this,
        [this](const ListingCache::Listing &listing) { sendListing(listing); });
}

/// Whether the visitor may add files here but see nothing, which is told of any folder.
bool FolderReply::isDropBox() const
{
    return takesForms() && !exchange.access().may(Right::See, exchange.path());
}

void FolderReply::sendListing(const ListingCache::Listing &listing)
{
    if (isOver())
        return;
    if (!listing)
        return exchange.breakOff();
    sendPage(listing);
}

bool FolderReply::hasPad() const
{
    const Access &access = exchange.access();
    return exchange.service().profile->scratchPad != 0 && access.home.isEmpty()
        && access.may(Right::Read, {}) && findRoute(exchange.routes(), Method::Get, padPath);
}

/// Whether the visitor may add files here by a form.
bool FolderReply::takesForms() const
{
    return exchange.access().may(Right::Add, exchange.path())
        && findRoute(exchange.routes(), Method::Post, exchange.path());
}

void FolderReply::sendPage(const ListingCache::Listing &listing)
{
    const Access &access = exchange.access();
    // The button that leads back would show it again after the log-out.
    fields = { { "Content-Type", "text/html; charset=utf-8" },
               { "Cache-Control", access.inSession ? "no-store" : "no-cache" } };
    QByteArray top = access.inSession ? logOutForm(exchange) : QByteArray();
    if (isArchived())
        top += FolderPage::archiveLink();
    if (hasPad())
        top += FolderPage::padLink(exchange.urls().prefix);
    if (takesForms())
        top += FolderPage::uploadForm();
    const QByteArray nonce = newSecret();
    const QByteArray head = appHead(exchange.urls().prefix, nonce);
    if (!head.isEmpty())
        addAppProtection(fields, nonce);
    else
        takesForms() || access.inSession ? addFormProtection(fields) : addPageProtection(fields);
    page.emplace(FolderPage::Frame{ seenFrom(access.home, exchange.path()), head, top }, listing);
    beginTurns();
}

bool FolderReply::takeTurn(const Turn &turn)
{
    do
        page->writeOn(text);
    while (!page->isAtEnd() && text.size() < pieceBytes && !turn.isOver());
    if (page->isAtEnd() || text.size() >= pieceBytes)
        sendPiece();
    return state == State::Making;
}

void FolderReply::sendPiece()
{
    const bool isLast = page->isAtEnd();
    if (isLast || begun || settle())
        send(Status::Ok, std::move(fields), std::exchange(text, {}), isLast);
}

/// Whether a page that is longer than a piece may go on.
bool FolderReply::settle()
{
    if (page->settle(*exchange.service().setup.replies))
        return true;
    exchange.refuse(Status::Unavailable, "Too many pages are on their way.",
                    { { "Retry-After", "10" } });
    return false;
}

void FolderReply::stop()
{
    if (!leave())
        return;
    page.reset();
    text.clear();
}

/// Whether the visitor can have the folder as a file.
bool FolderReply::isArchived() const
{
    const Route *route = findRoute(exchange.routes(), Method::Get, exchange.path(), archiveQuery);
    return route && route->parameter && exchange.access().may(Right::See, exchange.path())
        && exchange.access().may(Right::Read, exchange.path());
}

} // namespace standard

#include "standard/http/FolderPage.h"

#include "files/FolderListing.h"
#include "server/HttpDate.h"
#include "standard/http/Html.h"
#include "standard/http/Uri.h"

#include <algorithm>
#include <utility>

namespace standard {

namespace {

constexpr qint64 rowsAtOnce = 16;

void addRow(QByteArray &to, const FolderListing::Entry &entry)
{
    const QByteArray name = entry.folder ? entry.name + '/' : entry.name;
    // In front of a name with a colon, which would be taken for a scheme.
    to.append("<tr><td><a href=\"./").append(encodedPath(name)).append("\">");
    to.append(escaped(name)).append("</a></td><td>");
    if (!entry.folder)
        to.append(QByteArray::number(entry.size));
    to.append("</td><td>").append(httpDate(entry.modifiedSeconds())).append("</td></tr>\n");
}

QByteArray beginOf(const FolderPage::Frame &frame, bool listed)
{
    const QByteArray title = '/' + frame.path;
    QByteArray text = pageBegin(title, frame.head) + "<body>" + frame.top + "<main><h1>"
        + escaped(title) + "</h1>\n";
    if (listed)
        text += "<table>\n";
    if (listed && !frame.path.isEmpty())
        text += "<tr><td><a href=\"../\">../</a></td><td></td><td></td></tr>\n";
    return text;
}

} // namespace

QByteArray FolderPage::uploadForm()
{
    return R"(<form method="post" action="./" enctype="multipart/form-data"><p>)"
           R"(<label>Add a file: <input type="file" name="file" required></label> )"
           "<button>Upload</button></p></form>\n";
}

QByteArray FolderPage::padLink(const QByteArray &prefix)
{
    return "<p><a href=\"" + escaped(prefix) + '/' + padPath + "\">Scratch pad</a></p>\n";
}

FolderPage::FolderPage(const Frame &frame, ListingCache::Listing entries)
    : beginning(beginOf(frame, entries != nullptr))
    , listing(std::move(entries))
    , shown(listing ? std::min(listing->count(), maxPageEntries) : 0)
    , unshown(listing ? listing->count() - shown : 0)
{
}

void FolderPage::writeOn(QByteArray &to)
{
    if (state == State::Begin) {
        to += std::exchange(beginning, {});
        state = State::Rows;
    }
    for (const qint64 end = std::min(next + rowsAtOnce, shown); next < end; ++next)
        addRow(to, listing->at(next));
    if (next < shown)
        return;
    if (listing)
        to += "</table>\n";
    if (unshown > 0)
        to += "<p>" + QByteArray::number(unshown) + " more</p>\n";
    to += "</main></body></html>\n";
    state = State::Ended;
}

bool FolderPage::settle(MemoryBudget &budget)
{
    if (unshown > 0)
        listing = std::make_shared<const FolderListing>(*listing, shown);
    place = listing->placeIn(budget);
    return place != nullptr;
}

QByteArray FolderPage::archiveLink()
{
    return QByteArray("<p><a href=\"?") + archiveQuery + "\">Download as zip</a></p>\n";
}

} // namespace standard

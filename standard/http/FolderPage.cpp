#include "standard/http/FolderPage.h"

#include "files/FolderListing.h"
#include "standard/http/Html.h"
#include "standard/http/HttpDate.h"
#include "standard/http/Uri.h"

#include <algorithm>

namespace standard {

namespace {

QByteArray row(const FolderListing::Entry &entry)
{
    const QByteArray name = entry.folder ? entry.name + '/' : entry.name;
    // In front of a name with a colon, which would be taken for a scheme.
    return "<tr><td><a href=\"./" + encodedPath(name) + "\">" + escaped(name) + "</a></td><td>"
        + (entry.folder ? QByteArray() : QByteArray::number(entry.size)) + "</td><td>"
        + httpDate(entry.modifiedSeconds()) + "</td></tr>\n";
}

} // namespace

QByteArray folderPage(const QByteArray &path, const FolderListing &listing, const QByteArray &top)
{
    const QByteArray title = '/' + path;
    QByteArray page =
        pageBegin(title) + "<body>" + top + "<h1>" + escaped(title) + "</h1>\n<table>\n";
    if (!path.isEmpty())
        page += "<tr><td><a href=\"../\">../</a></td><td></td><td></td></tr>\n";
    const qint64 shown = std::min(listing.count(), maxPageEntries);
    for (qint64 i = 0; i < shown; ++i)
        page += row(listing.at(i));
    page += "</table>\n";
    if (shown < listing.count())
        page += "<p>" + QByteArray::number(listing.count() - shown) + " more</p>\n";
    return page + "</body></html>\n";
}

QByteArray archiveLink()
{
    return QByteArray("<p><a href=\"?") + archiveQuery + "\">Download as zip</a></p>\n";
}

} // namespace standard

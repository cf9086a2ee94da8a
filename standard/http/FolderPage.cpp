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

QByteArray table(const FolderListing &listing, bool isRoot)
{
    QByteArray rows = "<table>\n";
    if (!isRoot)
        rows += "<tr><td><a href=\"../\">../</a></td><td></td><td></td></tr>\n";
    const qint64 shown = std::min(listing.count(), maxPageEntries);
    for (qint64 i = 0; i < shown; ++i)
        rows += row(listing.at(i));
    rows += "</table>\n";
    if (shown < listing.count())
        rows += "<p>" + QByteArray::number(listing.count() - shown) + " more</p>\n";
    return rows;
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

QByteArray FolderPage::html() const
{
    const QByteArray title = '/' + path;
    const QByteArray content = listing ? table(*listing, path.isEmpty()) : QByteArray();
    return pageBegin(title, head) + "<body>" + top + "<main><h1>" + escaped(title) + "</h1>\n"
        + content + "</main></body></html>\n";
}

QByteArray FolderPage::archiveLink()
{
    return QByteArray("<p><a href=\"?") + archiveQuery + "\">Download as zip</a></p>\n";
}

} // namespace standard

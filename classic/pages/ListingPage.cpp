#include "classic/pages/ListingPage.h"

#include "classic/http/RequestTarget.h"
#include "classic/pages/Markup.h"
#include "classic/pages/Pages.h"
#include "server/SessionTable.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int entriesPerRow = 3;
constexpr int refreshPosition = 12; ///< right behind "<html><head>"
constexpr auto refreshTag = R"(<meta http-equiv="refresh" content="2"/>)";

struct Choice
{
    const char *label;
    const char *value;
};

struct SortChoice
{
    Choice choice;
    SessionData::SortMode mode;
};

constexpr std::array<SortChoice, 3> sortChoices{ {
    { { QT_TRANSLATE_NOOP("BrowserPages", "Name"), "n" }, SessionData::ByName },
    { { QT_TRANSLATE_NOOP("BrowserPages", "Size"), "s" }, SessionData::BySize },
    { { QT_TRANSLATE_NOOP("BrowserPages", "Time"), "t" }, SessionData::ByTime },
} };

constexpr std::array<Choice, 5> actionChoices{ {
    { QT_TRANSLATE_NOOP("BrowserPages", "Select Action"), "" },
    { QT_TRANSLATE_NOOP("BrowserPages", "Add File"), "up" },
    { QT_TRANSLATE_NOOP("BrowserPages", "Create Folder"), "cf" },
    { QT_TRANSLATE_NOOP("BrowserPages", "File Manager in window"), "upfm" },
    { QT_TRANSLATE_NOOP("BrowserPages", "File Manager in browser"), "upm" },
} };

QByteArray translated(const char *word)
{
    return QCoreApplication::translate("BrowserPages", word).toUtf8();
}

QByteArray folderUrl(const QByteArray &start, const QByteArray &path)
{
    QByteArray url = start;
    addEncodedPath(&url, path);
    if (!url.endsWith('/'))
        url.append('/');
    return url;
}

} // namespace

ListingPage::ListingPage(std::shared_ptr<const FolderListing> entries, Options pageOptions)
    : listing(std::move(entries))
    , options(std::move(pageOptions))
    , perPage(std::max(1, options.itemsPerPage))
    , first(std::min(options.pageIndex * perPage, listing->count()))
    , end(std::min(first + perPage, listing->count()))
    , previews(options.pictures ? std::size_t(end - first) : 0, Previews::State::Failed)
    , frame{ folderUrl({}, withOneSlash(options.urlPath.toUtf8())),
             folderUrl(previewUrl, options.diskFolder.toUtf8()),
             translated(QT_TRANSLATE_NOOP("BrowserPages", "Folder")), options.deleting, &dates }
{
}

void ListingPage::setPreview(qint64 index, Previews::State state)
{
    previews[std::size_t(index)] = state;
    complete = complete && state != Previews::State::Pending;
}

bool ListingPage::addNext(QByteArray *out)
{
    page = out;
    switch (part) {
    case Part::Top:
        addTop();
        goOn(1, shownCount() > 0 ? Part::Entries : Part::Middle);
        return true;
    case Part::Entries:
        addEntry();
        goOn(shownCount(), Part::Middle);
        return true;
    case Part::Middle:
        addMiddle();
        goOn(1, pageCount() > 1 ? Part::Links : Part::Bottom);
        return true;
    case Part::Links:
        addPageLink();
        goOn(pageCount(), Part::Bottom);
        return true;
    case Part::Bottom:
        page->append("</tr></table></body></html>");
        return false;
    }
    return false;
}

/// Counts a step of the current part; after `steps` of them comes the next part.
void ListingPage::goOn(qint64 steps, Part then)
{
    if (++step < steps)
        return;
    part = then;
    step = 0;
}

void ListingPage::restart()
{
    part = Part::Top;
    step = 0;
}

void ListingPage::addTop()
{
    const auto start = int(page->size());
    addHead(page);
    if (!complete)
        page->insert(start + refreshPosition, refreshTag);
    if (options.deleting)
        page->append(deleteScripts());
    page->append("</head>");
    addBody(page, options.pictures);
    page->append("<table><tr>");
    addUpLink();
    addSortForm();
    if (options.uploading)
        addActionForm();
    if (options.deleting)
        addDeleteForm();
    page->append("</tr></table>");
    addEscaped(page, options.message);
    page->append(R"(<table border="1" frame="border">)");
    if (listing->count() > 0)
        return;
    page->append("<tr><td><h2>");
    page->append(translated(QT_TRANSLATE_NOOP("BrowserPages", "Empty")));
    page->append("</h2></td></tr>");
}

void ListingPage::addUpLink()
{
    const QString &url = options.urlPath;
    const auto slash = url.lastIndexOf(QLatin1Char('/'));
    if (slash == url.size() - 1)
        return;
    page->append(R"(<td><b><a href=")");
    addLocalLink(page, url.left(slash).toUtf8());
    page->append(R"(">..)");
    addEscaped(page, url.toUtf8());
    page->append("</a></b></td>");
}

void ListingPage::addSortForm()
{
    page->append(R"(<form method="POST" name="s">)"
                 R"(<td>Sorted by:<select name="a" onchange="s.submit();">)");
    for (const SortChoice &sort : sortChoices)
        addOption(page, sort.choice.label, sort.choice.value, options.sortMode == sort.mode);
    page->append("</select></td></form>");
}

void ListingPage::addActionForm()
{
    page->append(R"(<form method="POST" name="af"><td><select name="a" )"
                 R"(onchange="if(af.a.selectedIndex>0){af.submit();af.a.selectedIndex=0;}">)");
    for (const Choice &action : actionChoices)
        addOption(page, action.label, action.value, *action.value == '\0');
    page->append("</select></td></form>");
}

/// Stays open: the check boxes of the entries are its fields.
void ListingPage::addDeleteForm()
{
    page->append(R"html(<form method="POST" name="fl" onsubmit="return read_value()">)html"
                 R"(<input type="hidden" name="a" value="del">)"
                 R"(<td><input type="submit" value="Delete selected items"></td>)");
}

/// One that can't be read keeps its place.
void ListingPage::addEntry()
{
    if (step % entriesPerRow == 0)
        page->append("<tr>");
    const FolderListing::Entry entry = shown(step);
    if (entry.readable && options.pictures)
        ListedEntry(entry).addCell(page, frame, previews[std::size_t(step)]);
    else if (entry.readable)
        ListedEntry(entry).addPlainCell(page, frame);
    if (step % entriesPerRow == entriesPerRow - 1 || step == shownCount() - 1)
        page->append("</tr>");
}

void ListingPage::addMiddle()
{
    page->append("</table>");
    if (options.deleting)
        page->append("</form>");
    page->append("<table><tr>");
    addInputP(page, options.itemsPerPage);
    if (pageCount() > 1)
        page->append("<td>Pages: ");
}

void ListingPage::addPageLink()
{
    const QByteArray number = QByteArray::number(step + 1);
    if (step == options.pageIndex) {
        page->append("<b>").append(number).append("</b> ");
    } else {
        page->append(R"(<a href="?a=p&p=)").append(QByteArray::number(step)).append(R"(">)");
        page->append(number).append("</a> ");
    }
    if (step == pageCount() - 1)
        page->append("</td>");
}

qint64 ListingPage::pageCount() const
{
    return (listing->count() + perPage - 1) / perPage;
}

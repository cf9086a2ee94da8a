#include "classic/pages/ListingPage.h"

#include "classic/pages/HTML_Element_Manager.h"
#include "classic/pages/Markup.h"
#include "classic/pages/Pages.h"

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

QByteArray folderUrl(const QString &urlPath)
{
    QByteArray url;
    addEncodedPath(&url, urlPath.toUtf8());
    if (!url.endsWith('/'))
        url.append('/');
    return url;
}

} // namespace

void writeDirFile(QByteArray *page, const FolderListing::Entry &entry, const CellFrame &frame)
{
    const QByteArray name = entry.info.fileName().toUtf8();
    addCellStart(page, frame, entry.facts, name);
    addEscaped(page, name);
    page->append("</a><br>");
    if (entry.facts.folder)
        page->append(translated(QT_TRANSLATE_NOOP("BrowserPages", "Folder")));
    else
        addFileFacts(page, frame, entry.facts);
    page->append("</td>");
}

ListingPage::ListingPage(const FolderListing &entries, Options pageOptions, SessionData &clientData)
    : listing(entries)
    , options(std::move(pageOptions))
    , session(clientData)
    , perPage(qMax(1, clientData.itemsPerPage))
    , frame{ folderUrl(options.urlPath), options.deleting, &dates }
{
    choosePage();
    takeEntries();
}

void ListingPage::choosePage()
{
    pageIndex = qMax(0, session.page);
    if (pageIndex > 0 && pageIndex * perPage >= listing.count()) {
        pageIndex = 0;
        session.page = 0;
    }
}

void ListingPage::takeEntries()
{
    const qint64 start = pageIndex * perPage;
    const qint64 end = qMin(start + perPage, listing.count());
    places.reserve(std::size_t(qMax<qint64>(0, end - start)));
    for (qint64 i = start; i < end; ++i) {
        const std::optional<FolderListing::Entry> entry = listing.entry(i);
        if (!entry) {
            places.emplace_back();
            continue;
        }
        Shown shown{ *entry, {} };
        if (options.pictures) {
            shown.element =
                options.pictures->toHTML(entry->info, entry->facts, listing.canonicalPath());
            complete = complete && shown.element->isReady();
        }
        places.emplace_back(shown);
    }
}

QByteArray ListingPage::render()
{
    page.reserve(sizeLimit());
    addPageHead();
    page.append("<table><tr>");
    addUpLink();
    addSortForm();
    if (options.uploading)
        addActionForm();
    if (options.deleting)
        addDeleteForm();
    page.append("</tr></table>");
    addMessage();
    addEntries();
    if (options.deleting)
        page.append("</form>");
    page.append("<table><tr>");
    addInputP(&page, session.itemsPerPage);
    addPageLinks();
    page.append("</tr></table></body></html>");
    return page;
}

/// Bytes that the page won't exceed, so that it is never moved while it grows.
int ListingPage::sizeLimit() const
{
    constexpr qint64 frameSize = 4096;
    constexpr qint64 cellSize = 512;
    constexpr qint64 linkSize = 64;
    constexpr qint64 bytesPerCharacter = 24; // UTF-8, twice as it is and twice percent-encoded
    constexpr qint64 largest = qint64(64) * 1024 * 1024;

    qint64 size = frameSize + qint64(6) * session.message.size();
    size += 2 * bytesPerCharacter * options.urlPath.size();
    size += linkSize * (listing.count() / perPage + 1);
    for (const std::optional<Shown> &shown : places) {
        if (shown)
            size += cellSize + qint64(2) * frame.urlFolder.size()
                + bytesPerCharacter * shown->entry.info.filePath().size();
    }
    return int(qMin(size, largest));
}

void ListingPage::addPageHead()
{
    addHead(&page);
    if (!complete)
        page.insert(refreshPosition, refreshTag);
    if (options.deleting)
        page.append(deleteScripts());
    page.append("</head>");
    addBody(&page, options.pictures != nullptr);
}

void ListingPage::addUpLink()
{
    const QString &url = options.urlPath;
    const int slash = int(url.lastIndexOf(QLatin1Char('/')));
    if (slash == url.size() - 1)
        return;
    page.append(R"(<td><b><a href=")");
    addEscaped(&page, slash == 0 ? QByteArray("/") : url.left(slash).toUtf8());
    page.append(R"(">..)");
    addEscaped(&page, url.toUtf8());
    page.append("</a></b></td>");
}

void ListingPage::addSortForm()
{
    page.append(R"(<form method="POST" name="s">)"
                R"(<td>Sorted by:<select name="a" onchange="s.submit();">)");
    for (const SortChoice &sort : sortChoices)
        addOption(&page, sort.choice.label, sort.choice.value, session.sortMode == sort.mode);
    page.append("</select></td></form>");
}

void ListingPage::addActionForm()
{
    page.append(R"(<form method="POST" name="af"><td><select name="a" )"
                R"(onchange="if(af.a.selectedIndex>0){af.submit();af.a.selectedIndex=0;}">)");
    for (const Choice &action : actionChoices)
        addOption(&page, action.label, action.value, *action.value == '\0');
    page.append("</select></td></form>");
}

/// Stays open: the check boxes of the entries are its fields.
void ListingPage::addDeleteForm()
{
    page.append(R"html(<form method="POST" name="fl" onsubmit="return read_value()">)html"
                R"(<input type="hidden" name="a" value="del">)"
                R"(<td><input type="submit" value="Delete selected items"></td>)");
}

void ListingPage::addMessage()
{
    addEscaped(&page, session.message);
    session.message.clear();
}

void ListingPage::addEntries()
{
    page.append(R"(<table border="1" frame="border">)");
    if (listing.count() == 0) {
        page.append("<tr><td><h2>");
        page.append(translated(QT_TRANSLATE_NOOP("BrowserPages", "Empty")));
        page.append("</h2></td></tr>");
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (i % entriesPerRow == 0)
            page.append("<tr>");
        if (places[i])
            addCell(*places[i]);
        if (i % entriesPerRow == entriesPerRow - 1 || i == places.size() - 1)
            page.append("</tr>");
    }
    page.append("</table>");
}

void ListingPage::addCell(const Shown &shown)
{
    if (shown.element)
        shown.element->toHTML(&page, frame);
    else
        writeDirFile(&page, shown.entry, frame);
}

void ListingPage::addPageLinks()
{
    const qint64 pages = (listing.count() + perPage - 1) / perPage;
    if (pages < 2)
        return;
    page.append("<td>Pages: ");
    for (qint64 i = 0; i < pages; ++i) {
        const QByteArray number = QByteArray::number(i + 1);
        if (i == pageIndex) {
            page.append("<b>").append(number).append("</b> ");
            continue;
        }
        page.append(R"(<a href="?a=p&p=)").append(QByteArray::number(i)).append(R"(">)");
        page.append(number).append("</a> ");
    }
    page.append("</td>");
}

#include "classic/pages/ListedEntry.h"

#include "classic/http/RequestTarget.h"
#include "classic/pages/Markup.h"

#include <QFile>

#include <array>
#include <utility>

namespace {

struct IconRow
{
    const char *extension;
    const char *icon;
};

constexpr std::array<IconRow, 28> icons{ {
    { "html", "html.png" },       { "doc", "doc.png" },         { "rtf", "doc.png" },
    { "pdf", "doc.png" },         { "pps", "doc.png" },         { "mp3", "music.png" },
    { "wav", "music.png" },       { "ogg", "music.png" },       { "aac", "music.png" },
    { "avi", "media.png" },       { "mov", "media.png" },       { "mp4", "media.png" },
    { "3gp", "media.png" },       { "flv", "media.png" },       { "vob", "media.png" },
    { "wmv", "media.png" },       { "m4a", "media.png" },       { "zip", "folder_tar.png" },
    { "rar", "folder_tar.png" },  { "gz", "folder_tar.png" },   { "txt", "txt.png" },
    { "xls", "sheet.png" },       { "exe", "application.png" }, { "bat", "application.png" },
    { "cmd", "application.png" }, { "sh", "application.png" },  { "jpg", "image.png" },
    { "png", "image.png" },
} };

constexpr qint64 smallPictureBytes = 20000; ///< smaller ones are shown themselves
constexpr auto imageStart = R"(<img src=")";
constexpr auto imageEnd = R"(" vspace="8" align="center" border="0">)";

bool isPicture(const QByteArray &extension)
{
    return extension == "jpg" || extension == "png";
}

/// Null when there is none.
const char *iconOf(const QByteArray &extension)
{
    for (const IconRow &row : icons) {
        if (extension == row.extension)
            return row.icon;
    }
    return nullptr;
}

} // namespace

ListedEntry::ListedEntry(FolderListing::Entry listed)
    : entry(std::move(listed))
    , name(QFile::decodeName(entry.name).toUtf8())
{
    const auto dot = name.lastIndexOf('.');
    if (dot < 1)
        return;
    ext = name.mid(dot + 1).toLower();
    if (isPicture(ext) && !entry.folder)
        picture = entry.size < smallPictureBytes ? Picture::Small : Picture::Large;
}

void ListedEntry::addCell(QByteArray *page, const CellFrame &frame, Previews::State preview) const
{
    addCellStart(page, frame);
    addImage(page, frame, preview);
    page->append("<br>");
    addEscaped(page, name);
    page->append("<br>");
    if (entry.folder) {
        page->append(imageStart).append(iconUrl).append("folder.png").append(imageEnd);
        page->append("</a>");
    } else {
        page->append("</a>");
        addFileFacts(page, frame);
    }
    page->append("</td>");
}

void ListedEntry::addPlainCell(QByteArray *page, const CellFrame &frame) const
{
    addCellStart(page, frame);
    addEscaped(page, name);
    page->append("</a><br>");
    if (entry.folder)
        page->append(frame.folderText);
    else
        addFileFacts(page, frame);
    page->append("</td>");
}

/// As far as the start tag of the link.
void ListedEntry::addCellStart(QByteArray *page, const CellFrame &frame) const
{
    page->append(R"(<td align="center" width="200">)");
    if (frame.withCheckbox) {
        // The delete action tells folders from files by these names.
        page->append(R"(<input type="checkbox" name=")").append(entry.folder ? "d" : "f");
        page->append(R"(" value=")");
        addEscaped(page, name);
        page->append(R"("> )");
    }
    page->append(R"(<a href=")").append(frame.urlFolder);
    addEncodedPath(page, name);
    page->append(R"(">)");
}

void ListedEntry::addFileFacts(QByteArray *page, const CellFrame &frame) const
{
    addSize(page, entry.size);
    page->append("<br>").append(frame.dates->text(entry.modified));
}

void ListedEntry::addImage(QByteArray *page, const CellFrame &frame, Previews::State preview) const
{
    const char *icon = iconOf(ext);
    const bool folderOfPictures = entry.folder && isPicture(ext);
    if (!icon || folderOfPictures)
        return;
    page->append(imageStart);
    if (picture == Picture::Small) {
        page->append(frame.urlFolder);
        addEncodedPath(page, name);
    } else if (picture == Picture::Large && preview == Previews::State::Ready) {
        page->append(frame.previewFolder);
        addEncodedPath(page, name);
    } else {
        page->append(iconUrl).append(icon);
    }
    page->append(imageEnd);
}

void ListedEntry::addReference(QByteArray *out, const QByteArray &urlPath, const QByteArray &root,
                               Previews::State preview) const
{
    if (picture == Picture::Small)
        out->append(urlPath);
    if (picture != Picture::Large || preview == Previews::State::Failed)
        return;
    out->append(previewUrl);
    if (preview == Previews::State::Ready)
        out->append(root).append(urlPath);
}

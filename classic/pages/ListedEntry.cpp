#include "classic/pages/ListedEntry.h"

#include "classic/pages/Cell.h"
#include "classic/pages/Markup.h"
#include "classic/pages/Preview.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

#include <array>
#include <utility>

namespace {

struct IconRow
{
    const char *extension;
    const char *icon;
};

constexpr std::array<IconRow, 26> icons{ {
    { "html", "html.png" },       { "doc", "doc.png" },         { "rtf", "doc.png" },
    { "pdf", "doc.png" },         { "pps", "doc.png" },         { "mp3", "music.png" },
    { "wav", "music.png" },       { "ogg", "music.png" },       { "aac", "music.png" },
    { "avi", "media.png" },       { "mov", "media.png" },       { "mp4", "media.png" },
    { "3gp", "media.png" },       { "flv", "media.png" },       { "vob", "media.png" },
    { "wmv", "media.png" },       { "m4a", "media.png" },       { "zip", "folder_tar.png" },
    { "rar", "folder_tar.png" },  { "gz", "folder_tar.png" },   { "txt", "txt.png" },
    { "xls", "sheet.png" },       { "exe", "application.png" }, { "bat", "application.png" },
    { "cmd", "application.png" }, { "sh", "application.png" },
} };

constexpr auto pictureIcon = "image.png";
constexpr auto previewUrl = "/_t/";
constexpr auto iconUrl = "/_i/";
constexpr auto imageEnd = R"(" vspace="8" align="center" border="0">)";

bool isPicture(const QString &extension)
{
    return extension == QLatin1String("jpg") || extension == QLatin1String("png");
}

} // namespace

/// A finished preview on disk, which goes with its owner.
class ListedEntry::TempFile
{
public:
    explicit TempFile(QString fileName)
        : name(std::move(fileName))
    {
    }
    ~TempFile() { QFile::remove(name); }

    QString fileName() const { return name; }

private:
    Q_DISABLE_COPY_MOVE(TempFile)

    const QString name;
};

QString ListedEntry::previewFolder()
{
    return QDir::homePath() + QLatin1String("/.thumbnails");
}

ListedEntry::ListedEntry(const QFileInfo &entry)
    : ListedEntry(entry, entryFacts(entry.filePath()))
{
}

ListedEntry::ListedEntry(const QFileInfo &entry, const EntryFacts &entryFacts)
    : info(entry)
    , facts(entryFacts)
    , ext(entry.fileName())
{
    const int dot = int(ext.lastIndexOf(QLatin1Char('.')));
    if (dot < 1)
        return;
    ext = ext.mid(dot + 1).toLower();
    if (!isPicture(ext)) {
        icon = getIcon(ext);
        return;
    }
    if (facts.folder)
        return;
    ready = facts.size < smallPictureBytes;
    icon = ready ? "" : pictureIcon;
}

void ListedEntry::init()
{
    const QImage picture = makePreview(info.filePath(), ext);
    ready = !picture.isNull() && savePreview(picture);
    if (!ready)
        scaleFailed();
}

bool ListedEntry::savePreview(const QImage &picture)
{
    const QString folder = previewFolder();
    QDir().mkpath(folder);
    QTemporaryFile file(folder + QLatin1Char('/') + info.fileName());
    if (!file.open() || file.fileName().isEmpty()) // it is named late, which may fail
        return false;
    // The format is named, since the file's name ends in its unique part.
    const char *format = ext == QLatin1String("png") ? "PNG" : "JPEG";
    if (!picture.save(&file, format) || !file.flush())
        return false;
    file.setAutoRemove(false);
    tmp = std::make_shared<const TempFile>(file.fileName());
    return true;
}

void ListedEntry::takePreview(const ListedEntry &other)
{
    tmp = other.tmp;
    ready = true;
}

void ListedEntry::scaleFailed()
{
    deleteTmpFile();
    ready = true;
}

QString ListedEntry::tempFileName() const
{
    return tmp ? tmp->fileName() : QString();
}

void ListedEntry::toHTML(QByteArray *page, const CellFrame &frame) const
{
    const QByteArray name = info.fileName().toUtf8();
    addCellStart(page, frame, facts, name);
    if (!icon.isNull()) {
        page->append(R"(<img src=")");
        addPicture(page, frame.urlFolder, name);
        page->append(imageEnd);
    }
    page->append("<br>");
    addEscaped(page, name);
    page->append("<br>");
    if (facts.folder) {
        page->append(R"(<img src="/_i/folder.png)").append(imageEnd).append("</a>");
    } else {
        page->append("</a>");
        addFileFacts(page, frame, facts);
    }
    page->append("</td>");
}

void ListedEntry::addPicture(QByteArray *page, const QByteArray &urlFolder,
                             const QByteArray &name) const
{
    if (icon.isEmpty()) {
        page->append(urlFolder);
        addEncodedPath(page, name);
    } else if (ready && tmp) {
        page->append(previewUrl);
        addEncodedPath(page, info.filePath().toUtf8());
    } else {
        page->append(iconUrl).append(icon);
    }
}

void ListedEntry::toMC(QByteArray *out, const QByteArray &urlFolder) const
{
    if (icon.isNull())
        return;
    if (icon.isEmpty())
        out->append(urlFolder).append(info.fileName().toUtf8());
    else if (!ready)
        out->append(previewUrl);
    else if (tmp)
        out->append(previewUrl).append(info.filePath().toUtf8());
}

QByteArray ListedEntry::getIcon(const QString &extension)
{
    for (const IconRow &row : icons) {
        if (extension == QLatin1String(row.extension))
            return row.icon;
    }
    return {};
}

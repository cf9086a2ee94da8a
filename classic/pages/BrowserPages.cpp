#include "classic/pages/BrowserPages.h"

#include "classic/dav/DeleteDir.h"
#include "classic/pages/FolderListing.h"
#include "classic/pages/ListingPage.h"
#include "classic/pages/Markup.h"
#include "config/Profile.h"

#include <QDir>
#include <QFile>
#include <QUrlQuery>

#include <algorithm>
#include <array>

namespace {

constexpr auto htmlType = "text/html; charset=UTF-8";
constexpr auto launchType = "application/x-java-jnlp-file; charset=UTF-8";
constexpr auto launchDisposition =
    "Content-Disposition: attachment; filename=\"filemanager.jnlp\"\r\n";

constexpr auto iconUrl = "/_i/";
constexpr auto previewUrl = "/_t/";
constexpr int specialUrlSize = 4;

constexpr auto actionField = "a";
constexpr auto folderField = "d"; ///< the check box of a folder

const char *uploadMessage(int result)
{
    switch (result) {
    case Saved:
        return "File sent success.";
    case WriteFailed:
        return "File send failed: Maybe insufficient storage.";
    case NoUsableForm:
        return "File send failed: Unsupported browser or no file selected.";
    case NameExists:
        return "File send failed: File exists";
    case BoundaryMissing:
        return "File send failed: Network error or unsupported browser.";
    default:
        return "File send failed: Network read error.";
    }
}

/// Whether a form field names the listed folder itself.
bool isListedFolder(const QString &name)
{
    const QString clean = QDir::cleanPath(QLatin1Char('/') + name);
    return clean == QLatin1String("/");
}

/// Browsers post a line feed in a name as CR LF.
QString existingEntry(const QString &path)
{
    const QLatin1String posted("\r\n");
    if (!path.contains(posted) || QFileInfo(path).isSymLink() || QFile::exists(path))
        return path;
    return QString(path).replace(posted, QLatin1String("\n"));
}

/// What can be seen at all: folders only while they may be browsed.
QDir::Filters listingFilter(bool folders, bool hidden)
{
    QDir::Filters filter = QDir::Files;
    if (folders)
        filter |= QDir::AllDirs | QDir::Readable | QDir::NoDotAndDotDot;
    if (hidden)
        filter |= QDir::Hidden;
    return filter;
}

} // namespace

HTML_Element_Manager BrowserPages::previews;

BrowserPages::BrowserPages(Profile *profile, Request *httpRequest)
    : FileReply(profile, httpRequest)
{
    setObjectName(QStringLiteral("SD"));
}

void BrowserPages::reply(const QFileInfo &shared)
{
    root = shared.absoluteFilePath();
    thumbnails = config->showsThumbnails();
    deleteAllowed = config->allowsDelete();
    const bool posted = request->methodCode == Request::Post;
    if (posted && act(request->field(actionField)) == Then::Nothing)
        return;
    servePath();
}

const BrowserPages::PostAction *BrowserPages::findAction(const QString &value)
{
    static constexpr std::array<PostAction, 12> actions{ {
        { "up", &BrowserPages::sendUpload },
        { "upm", &BrowserPages::sendFileBrowser },
        { "upfm", &BrowserPages::sendJNLP },
        { "cf", &BrowserPages::sendCreate },
        { "c", &BrowserPages::setItemsPerPage },
        { "n", &BrowserPages::sortByName },
        { "s", &BrowserPages::sortBySize },
        { "t", &BrowserPages::sortByTime },
        { "del", &BrowserPages::deleteSelected },
        { "cfd", &BrowserPages::createFolder },
        { "", &BrowserPages::receiveUpload },
        { "log", &BrowserPages::goOn },
    } };

    for (const PostAction &action : actions) {
        if (value == QLatin1String(action.value))
            return &action;
    }
    return nullptr;
}

BrowserPages::Then BrowserPages::act(const QString &value)
{
    // The form of a listing's second page still carries that page's "a" in its URL.
    if (request->isMultipart())
        return receiveUpload();
    if (const PostAction *action = findAction(value))
        return (this->*action->act)();
    request->session()->message = "Unknown request " + value.toUtf8();
    return Then::ServePath;
}

BrowserPages::Then BrowserPages::sendUpload()
{
    sendPage("200 OK", uploadPage(request->path.toUtf8(), thumbnails));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendCreate()
{
    sendPage("200 OK", createPage(request->path.toUtf8(), thumbnails));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendFileBrowser()
{
    sendPage("200 OK", appletPage(launch()));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendJNLP()
{
    const QByteArray scheme = config->usesTls() ? "https" : "http";
    contentType = launchType;
    sendBody("200 OK", launchDescriptor(scheme + "://" + request->host + '/', launch()),
             launchDisposition);
    return Then::Nothing;
}

ClientLaunch BrowserPages::launch() const
{
    return { request->path.toUtf8(), request->session()->id, request->credentials };
}

BrowserPages::Then BrowserPages::setItemsPerPage()
{
    request->session()->itemsPerPage = request->field("cv").toInt();
    sendDir(diskPath());
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sortBy(SessionData::SortMode mode)
{
    request->session()->sortMode = mode;
    return Then::ServePath;
}

BrowserPages::Then BrowserPages::receiveUpload()
{
    saveFileTo(diskPath());
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::refuse()
{
    sendHeader("403 Forbidden", 0);
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::deleteSelected()
{
    if (!deleteAllowed)
        return Then::ServePath;
    const auto fields = QUrlQuery(request->url).queryItems(QUrl::FullyDecoded);
    const bool climbing = std::any_of(fields.begin(), fields.end(),
                                      [](const auto &field) { return climbsOut(field.second); });
    if (climbing)
        return refuse();

    removedCount = 0;
    for (const auto &[field, name] : fields) {
        if (field != QLatin1String(actionField) && !isListedFolder(name))
            removeEntry(field, name);
    }
    request->session()->message += QByteArray::number(removedCount) + " file removed. ";
    return Then::ServePath;
}

void BrowserPages::removeEntry(const QString &field, const QString &name)
{
    const QString target = root + request->path + QLatin1Char('/') + name;
    const QString path = existingEntry(QDir::cleanPath(target));
    if (field != QLatin1String(folderField)) {
        if (QFile::remove(path))
            ++removedCount;
        return;
    }
    DeleteDir folder(path);
    if (!folder.deleteDir())
        request->session()->message += " delete " + toAscii(target) + " failed,";
    removedCount += folder.getDeleted();
}

BrowserPages::Then BrowserPages::createFolder()
{
    const QString name = request->field("f");
    if (climbsOut(name))
        return refuse();
    QByteArray &message = request->session()->message;
    const QString folder = QDir::cleanPath(diskPath() + QLatin1Char('/') + name);
    if (QFileInfo(folder).isDir())
        message = "Folder create failed: Folder exists";
    else if (QDir().mkpath(folder))
        message = "New folder created";
    else
        message = "Create new folder failed";
    return Then::ServePath;
}

/// Without "." and "..", so that a link can't be left by its back door.
QString BrowserPages::diskPath() const
{
    return QDir::cleanPath(root + request->path);
}

void BrowserPages::servePath()
{
    const QString &path = request->path;
    const QString rest = path.mid(specialUrlSize);
    if (path.startsWith(QLatin1String(iconUrl)))
        return sendFile(request->directories->icons + rest);
    if (path.startsWith(QLatin1String(previewUrl)))
        return sendFile(previews.getTempFile(rest));

    const QString target = diskPath();
    if (!QFileInfo(target).isDir())
        return sendFile(path.endsWith(QLatin1Char('/')) ? target + QLatin1Char('/') : target);
    if (request->field(actionField) == QLatin1String("p"))
        request->session()->page = request->field("p").toInt();
    sendDir(target);
}

void BrowserPages::sendDir(const QString &folder)
{
    SessionData &session = *request->session();
    const FolderListing listing(folder, listingFilter(config->showsFolders(), session.showHidden),
                                session.sortMode);
    const ListingPage::Options options{ request->path, thumbnails ? &previews : nullptr,
                                        deleteAllowed, config->allowsUpload() };
    ListingPage page(listing, options, session);
    sendPage(page.isComplete() ? "200 OK" : "202 Accepted", page.render());
}

void BrowserPages::sendPage(const QByteArray &status, const QByteArray &page)
{
    contentType = htmlType;
    sendBody(status, page);
}

void BrowserPages::sendBody(const QByteArray &status, const QByteArray &body,
                            const QByteArray &extra)
{
    sendHeader(status, body.size(), extra);
    request->channel.write(body, true);
}

void BrowserPages::reply(int result)
{
    finishUpload(result);
    request->session()->message = uploadMessage(result);
    sendDir(diskPath());
}

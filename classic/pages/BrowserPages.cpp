#include "classic/pages/BrowserPages.h"

#include "classic/pages/SelectionRemoval.h"
#include "classic/pages/SharedPreviews.h"
#include "config/Profile.h"
#include "files/DiskWorker.h"
#include "files/FolderMaking.h"
#include "files/Path.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr auto launchType = "application/x-java-jnlp-file; charset=UTF-8";
constexpr auto launchDisposition =
    "Content-Disposition: attachment; filename=\"filemanager.jnlp\"\r\n";

constexpr auto uploadAction = "";

constexpr int maxItemsPerPage = 10000;
constexpr int maxMessage = 8192; ///< bytes that a session keeps for its next page

constexpr int forbidden = 403; ///< of the status codes

constexpr auto uploadsOff = "File send failed: Uploads are not allowed.";
constexpr auto folderFailed = "Create new folder failed";

const char *uploadMessage(SaveResult result)
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

} // namespace

BrowserPages::BrowserPages(Exchange &current)
    : FileReply(current)
    , listing(current, [this](const QByteArray &status, qint64 length) {
        setContentType(htmlType);
        sendHeader(status, length);
    })
{
}

void BrowserPages::reply()
{
    const bool posted = request.methodCode == Request::Post;
    if (posted && act() == Then::Nothing)
        return;
    servePath();
}

const BrowserPages::PostAction *BrowserPages::findAction(const QString &value)
{
    static constexpr std::array<PostAction, 12> actions{ {
        { "up", &BrowserPages::sendUpload, uploadsOff },
        { "upm", &BrowserPages::sendFileBrowser },
        { "upfm", &BrowserPages::sendJNLP },
        { "cf", &BrowserPages::sendCreate, folderFailed },
        { "c", &BrowserPages::setItemsPerPage },
        { "n", &BrowserPages::sortByName },
        { "s", &BrowserPages::sortBySize },
        { "t", &BrowserPages::sortByTime },
        { "del", &BrowserPages::deleteSelected },
        { "cfd", &BrowserPages::createFolder, folderFailed },
        { uploadAction, &BrowserPages::receiveUpload, uploadsOff },
        { Request::loginAction, &BrowserPages::goOn },
    } };

    const auto *const found =
        std::find_if(actions.begin(), actions.end(), [&value](const PostAction &action) {
            return value == QLatin1String(action.value);
        });
    return found == actions.end() ? nullptr : found;
}

BrowserPages::Then BrowserPages::act()
{
    // The form of a listing's second page still carries that page's "a" in its URL.
    const QString value =
        request.isMultipart() ? QLatin1String(uploadAction) : request.field(Request::actionField);
    const PostAction *action = findAction(value);
    if (!action) {
        tell("Unknown request " + value.toUtf8());
        return Then::ServePath;
    }
    if (action->refusal && !exchange.service.profile->allowsUpload()) {
        tell(action->refusal);
        exchange.outcome = forbidden;
        return Then::ServePath;
    }
    return (this->*action->act)();
}

BrowserPages::Then BrowserPages::sendUpload()
{
    sendPage(uploadPage(request.path.toUtf8(), exchange.service.profile->showsThumbnails()));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendCreate()
{
    sendPage(createPage(request.path.toUtf8(), exchange.service.profile->showsThumbnails()));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendFileBrowser()
{
    sendPage(appletPage(launch()));
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sendJNLP()
{
    const QByteArray scheme = exchange.service.profile->usesTls() ? "https" : "http";
    setContentType(launchType);
    sendBody(Status::ok, launchDescriptor(scheme + "://" + request.host + '/', launch()),
             launchDisposition);
    return Then::Nothing;
}

ClientLaunch BrowserPages::launch()
{
    return { request.path.toUtf8(), exchange.session()->id, request.credentials };
}

BrowserPages::Then BrowserPages::setItemsPerPage()
{
    exchange.session()->itemsPerPage = std::min(request.field("cv").toInt(), maxItemsPerPage);
    listing.start();
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::sortBy(SessionData::SortMode mode)
{
    exchange.session()->sortMode = mode;
    return Then::ServePath;
}

BrowserPages::Then BrowserPages::receiveUpload()
{
    upload.start(request.path);
    return Then::Nothing;
}

BrowserPages::Then BrowserPages::deleteSelected()
{
    if (!exchange.service.profile->allowsDelete() || !exchange.service.share) {
        exchange.outcome = forbidden;
        return Then::ServePath;
    }
    const auto removal = std::make_shared<SelectionRemoval>(
        exchange.service.share, request.path,
        exchange.service.shared.absoluteFilePath() + request.path, request.query);
    exchange.service.setup.disk->run(removal, this,
                                     [this, removal] { selectionRemoved(*removal); });
    return Then::Nothing;
}

void BrowserPages::selectionRemoved(const SelectionRemoval &removal)
{
    if (!removal.isForbidden())
        tell(removal.message());
    exchange.changed = removal.gone();
    if (exchange.changed.empty())
        exchange.outcome = forbidden;
    if (!channel.canAnswer())
        return channel.end();
    if (removal.isForbidden())
        return sendHeader(Status::forbidden, 0);
    servePath();
}

BrowserPages::Then BrowserPages::createFolder()
{
    const QString name = request.field("f");
    if (climbsOut(name)) {
        sendHeader(Status::forbidden, 0);
        return Then::Nothing;
    }
    const std::shared_ptr<const Share> &share = exchange.service.share;
    const QByteArray folder = nativePath(request.path + QLatin1Char('/') + name);
    const bool exists = share && share->facts(folder).folder;
    exchange.changed = { folder };
    if (!share || exists) {
        exchange.outcome = forbidden;
        tell(exists ? "Folder create failed: Folder exists" : folderFailed);
        return Then::ServePath;
    }
    const auto making = std::make_shared<FolderMaking>(share, folder);
    exchange.service.setup.disk->run(making, this,
                                     [this, making] { folderMade(making->error() == 0); });
    return Then::Nothing;
}

void BrowserPages::folderMade(bool isMade)
{
    exchange.outcome = isMade ? 0 : forbidden;
    tell(isMade ? "New folder created" : folderFailed);
    if (!channel.canAnswer())
        return channel.end();
    servePath();
}

void BrowserPages::uploadDone(SaveResult result)
{
    tell(uploadMessage(result));
    const bool broken = result == ReadFailed || !channel.canAnswer();
    if (!broken)
        return listing.start();
    // Nobody would see its page: the message waits for another connection.
    channel.setKeepAlive(false);
    channel.end();
}

void BrowserPages::servePath()
{
    const QString &path = request.path;
    if (const auto icon = restBehind(iconUrl, path))
        return sendInstalled(exchange.service.setup.directories.icons + *icon);
    if (const auto picture = restBehind(previewUrl, path))
        return sendPreview(*picture);

    // Files are asked for most often, and opening is the only look that they need.
    if (!path.endsWith(QLatin1Char('/')) && sendRegular(QDir::cleanPath(path)))
        return;
    const Share *share = exchange.service.share.get();
    const bool isFolder = share && share->facts(nativePath(path)).folder;
    if (!isFolder)
        return sendEntry();
    if (request.field(Request::actionField) == QLatin1String("p"))
        exchange.session()->page = request.field("p").toInt();
    listing.start();
}

/// A file, or what is told of one that isn't there.
void BrowserPages::sendEntry()
{
    if (request.path.endsWith(QLatin1Char('/')))
        return sendShared(request.path, pathOnDisk() + QLatin1Char('/'));
    sendShared(QDir::cleanPath(request.path), pathOnDisk());
}

void BrowserPages::sendPreview(const QString &pathOnDisk)
{
    // Of six letters, as the name has always ended: no type is told by it.
    const QLatin1String nameEnd(".sketch");
    std::optional<OpenFile> preview = openPreview(exchange.service, pathOnDisk);
    if (!preview)
        return notFound({});
    const QString name = QFileInfo(pathOnDisk).fileName() + nameEnd;
    sendOpened(served(std::move(*preview)), name);
}

void BrowserPages::sendPage(const QByteArray &page)
{
    setContentType(htmlType);
    sendBody(Status::ok, page);
}

/// For the session's next page. It takes the place of an older one, which nobody asked to see.
void BrowserPages::tell(const QByteArray &message)
{
    exchange.session()->message = message.left(maxMessage);
}

/// Of what the request names, without "." and "..".
QString BrowserPages::pathOnDisk() const
{
    return QDir::cleanPath(exchange.service.shared.absoluteFilePath() + request.path);
}

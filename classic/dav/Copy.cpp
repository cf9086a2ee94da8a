#include "classic/dav/Copy.h"

#include <QDir>

#include <utility>

namespace {

constexpr auto copyFailed = "500 File Copy Failed";

bool isSameEntry(const QFileInfo &a, const QFileInfo &b)
{
    return a.exists() && a.canonicalFilePath() == b.canonicalFilePath();
}

} // namespace

Copy::Copy(Request *httpRequest)
    : Dav(httpRequest, name)
{
}

void Copy::reply(const QFileInfo &shared)
{
    overwrite = request->overwrite != "F";
    const RequestTarget target = request->destinationTarget();
    const QFileInfo source(pathIn(shared, request->path));
    const QFileInfo destination(pathIn(shared, target.path));
    const bool refused = target.form != RequestTarget::Form::Path
        || isSameEntry(source, destination) || (destination.isFile() && !overwrite);
    if (refused)
        return sendHeader(DavStatus::preconditionFailed, 0);

    if (source.isDir())
        return copyTree(source, destination);
    copySingle(source, destination);
}

void Copy::copySingle(const QFileInfo &source, QFileInfo destination)
{
    if (!source.isFile())
        return sendHeader("410 Gone", 0);
    if (destination.isDir())
        destination.setFile(destination.absoluteFilePath() + QLatin1Char('/') + source.fileName());
    if (isSameEntry(source, destination))
        return sendHeader(DavStatus::preconditionFailed, 0);
    if (destination.fileName().isEmpty())
        return sendHeader(copyFailed, 0);

    // The copy goes to the working folder, whatever folder the destination names; that one only
    // loses the file which stood there.
    const QString copy = QDir::current().absoluteFilePath(destination.fileName());
    const bool existed = destination.isFile();
    const QString outdated = existed && overwrite ? destination.absoluteFilePath() : QString();
    const bool inPlace = !outdated.isEmpty() && isSameEntry(QFileInfo(copy), destination);
    const auto existing = inPlace ? FileCopy::Existing::Replaced : FileCopy::Existing::Kept;
    copier.start(source.absoluteFilePath(), copy, existing,
                 [this, existed, outdated, inPlace](bool copied) {
                     if (copied && !inPlace && !outdated.isEmpty())
                         QFile::remove(outdated);
                     const char *status = existed ? "204 No Content" : DavStatus::created;
                     sendHeader(copied ? status : copyFailed, 0);
                 });
}

void Copy::copyTree(const QFileInfo &source, const QFileInfo &destination)
{
    if (destination.isFile())
        return sendHeader(DavStatus::preconditionFailed, 0);
    if (destination.filePath().isEmpty())
        return sendHeader(copyFailed, 0);

    init(body);
    // An attribute without a value: that is how this document has always begun.
    body += "multistatus xmlns>";
    pending.clear();
    visited.clear();
    copyDir(source, destination.absoluteFilePath());
}

void Copy::copyNext()
{
    if (pending.empty()) {
        body += "</multistatus>";
        sendDocument(std::exchange(body, {}));
        return;
    }
    const Pending next = std::move(pending.back());
    pending.pop_back();
    if (next.source.isDir())
        copyDir(next.source, next.destination + QLatin1Char('/') + next.source.fileName());
    else
        copyFile(next.source, next.destination);
}

/// Puts the entries of a folder in front of what is left.
void Copy::copyDir(const QFileInfo &folder, const QString &destination)
{
    const QString path = folder.canonicalFilePath();
    if (!visited.contains(path)) {
        visited.insert(path);
        const QFileInfoList entries =
            QDir(folder.absoluteFilePath()).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
        for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry)
            pending.push_back({ *entry, destination });
    }
    // Queued, here and below: a large tree is worked off between other requests.
    QMetaObject::invokeMethod(this, &Copy::copyNext, Qt::QueuedConnection);
}

void Copy::copyFile(const QFileInfo &file, const QString &destination)
{
    if (!overwrite) {
        addResponse(file, DavStatus::preconditionFailed);
        QMetaObject::invokeMethod(this, &Copy::copyNext, Qt::QueuedConnection);
        return;
    }
    // The whole path of the source is nested below the destination; no folder is made for it.
    const QString source = file.absoluteFilePath();
    const QString copy = destination + QLatin1Char('/') + source;
    const bool exists = QFileInfo(copy).isFile();
    copier.start(source, copy, exists ? FileCopy::Existing::Replaced : FileCopy::Existing::Kept,
                 [this, file](bool copied) {
                     addResponse(file, copied ? DavStatus::ok : "500 File copy error");
                     copyNext();
                 });
}

void Copy::addResponse(const QFileInfo &file, const QByteArray &status)
{
    body += "<response><href>" + hrefPath(file.absoluteFilePath()) + "</href>";
    body += "<status>HTTP/1.1 " + status + "</status></response>";
}

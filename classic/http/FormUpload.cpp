#include "classic/http/FormUpload.h"

#include "classic/http/Exchange.h"
#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Share.h"
#include "server/Uploads.h"

#include <QList>

namespace {

constexpr auto dispositionMark = "ition: "; ///< of "Content-Disposition: ", in any case of its head
constexpr int earliestMark = 13;
constexpr int dispositionSize = 31; ///< "Content-Disposition: form-data;"

QString decodedName(const QByteArray &bytes)
{
    const QString name = QString::fromUtf8(bytes.constData(), bytes.size());
    const bool isUtf8 = !name.contains(QChar::ReplacementCharacter);
    return isUtf8 ? name : QString::fromLatin1(bytes.constData(), bytes.size());
}

/// Browsers of other systems send the whole path of their file.
QByteArray withoutFolders(const QByteArray &name)
{
    auto cut = name.lastIndexOf('/');
    if (cut < 0)
        cut = name.lastIndexOf('\\');
    return name.mid(int(cut) + 1);
}

SaveResult resultOf(DiskError error)
{
    switch (error) {
    case DiskError::None:
        return Saved;
    case DiskError::Exists:
    case DiskError::Locked:
        return NameExists;
    default:
        return WriteFailed;
    }
}

/// What a PUT would be answered.
int statusOf(SaveResult result)
{
    switch (result) {
    case Saved:
        return 201;
    case NameExists:
        return 409;
    case OpenFailed:
    case WriteFailed:
        return 507;
    default:
        return 400;
    }
}

} // namespace

QString uploadName(const QByteArray &partHeaders)
{
    QByteArray parameters;
    const QList<QByteArray> lines = partHeaders.split('\n');
    for (const QByteArray &line : lines) {
        if (line.indexOf(dispositionMark, earliestMark) >= 0)
            parameters = line.mid(dispositionSize);
    }
    const QByteArray key("filename=");
    const auto start = parameters.indexOf(key);
    if (start < 0)
        return {};
    const auto nameStart = int(start + key.size()) + 1; // behind the opening quote
    const auto nameEnd = int(parameters.indexOf('"', nameStart));
    if (nameEnd < 0)
        return {};
    return decodedName(withoutFolders(parameters.mid(nameStart, nameEnd - nameStart)));
}

FormUpload::FormUpload(Exchange &current, QObject *responder, Ended whenEnded)
    : exchange(current)
    , context(responder)
    , ended(std::move(whenEnded))
{
}

FormUpload::~FormUpload() = default;

void FormUpload::start(const QString &target)
{
    folder = target;
    file.reset();
    if (!exchange.request.contentType.contains("boundary="))
        return finish(NoUsableForm);
    exchange.channel.receive({ BodyIntake::Target::PartHead, BodyIntake::maxPartHead });
}

void FormUpload::partHeadReady(const QByteArray &lines)
{
    const QString name = uploadName(lines);
    if (name.isEmpty() || name.contains(QChar::Null) || climbsOut(name))
        return finish(NoUsableForm);
    const QByteArray path = nativePath(folder + QLatin1Char('/') + name);
    exchange.changed = { path };
    if (const SaveResult result = open(path); result != Saved)
        return finish(result);

    const QByteArray key("boundary=");
    const QByteArray &type = exchange.request.contentType;
    const QByteArray boundary = type.mid(int(type.indexOf(key) + key.size()));
    exchange.channel.receive({ BodyIntake::Target::File,
                               exchange.request.contentLength - lines.size(), file.get(),
                               "\r\n--" + boundary });
}

/// `Saved` when the file can be received.
SaveResult FormUpload::open(const QByteArray &path)
{
    if (!exchange.service.share)
        return OpenFailed;
    Place place = exchange.service.share->place(path);
    if (!place.isValid())
        return OpenFailed;
    file = newUpload(*exchange.service.profile);
    const SaveResult result = resultOf(file->create(std::move(place)));
    return result == WriteFailed ? OpenFailed : result;
}

void FormUpload::bodyEnded(SaveResult result)
{
    const std::shared_ptr<UploadFile> received = std::move(file);
    DiskWorker &disk = *exchange.service.setup.disk;
    if (result != Saved) {
        received->discard();
        disk.run(received, nullptr, {});
        return finish(result);
    }
    disk.run(received, context, [this, received] { finish(resultOf(received->error())); });
}

void FormUpload::finish(SaveResult result)
{
    exchange.outcome = statusOf(result);
    ended(result);
}

#include "standard/web/Tus.h"

#include "files/DiskWorker.h"
#include "files/Path.h"
#include "files/Share.h"
#include "server/HttpDate.h"

#include <utility>

namespace standard {

UploadName::UploadName(const Exchange &exchange)
{
    const QByteArray path = pathBelow(exchange.path(), tusPath);
    folder = exchange.access().inShare(parentPath(path));
    id = path.mid(path.lastIndexOf('/') + 1);
}

QByteArray uploadUrl(const Exchange &exchange, const QByteArray &folder, const QByteArray &id)
{
    const UrlSpace urls = exchange.urls();
    const QByteArray path = joinedPath(joinedPath(tusPath, seenFrom(urls.home, folder)), id);
    return urlPath({ urls.prefix, {} }, path, false);
}

bool speaksTus(Exchange &exchange)
{
    if (exchange.request().value("Tus-Resumable") == tusVersion)
        return true;
    refuseTus(exchange, Status::PreconditionFailed, {}, { { "Tus-Version", tusVersion } });
    return false;
}

void replyTus(Exchange &exchange, Status status, Fields fields)
{
    fields.push_back({ "Tus-Resumable", tusVersion });
    exchange.reply(status, std::move(fields));
}

void refuseTus(Exchange &exchange, Status status, const QByteArray &text, Fields fields)
{
    fields.push_back({ "Tus-Resumable", tusVersion });
    exchange.refuse(status, text, std::move(fields));
}

Field offsetField(qint64 offset)
{
    return { "Upload-Offset", QByteArray::number(offset) };
}

Fields progressFields(const PartialUpload &upload, qint64 offset)
{
    if (offset == upload.record().length)
        return { offsetField(offset) };
    return { offsetField(offset), { "Upload-Expires", httpDate(upload.expires()) } };
}

std::optional<PartialUpload> findUpload(const Exchange &exchange, const QByteArray &folder,
                                        const QByteArray &id)
{
    const Share *share = exchange.share().get();
    if (!share || !PartialUpload::isId(id))
        return {};
    const Place beside = share->place(joinedPath(folder, id));
    std::optional<PartialUpload> found =
        beside.isValid() ? PartialUpload::find(beside, id) : std::nullopt;
    const bool isTheirs = found
        && (found->record().owner.isEmpty() || found->record().owner == exchange.access().account);
    if (!isTheirs || !found->isGivenUp())
        return isTheirs ? std::move(found) : std::nullopt;
    const auto claimed = std::make_shared<PartialUpload>(std::move(*found));
    exchange.service().setup.disk->run(PartialUpload::removal(claimed), nullptr, {});
    return {};
}

} // namespace standard

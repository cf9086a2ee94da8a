#include "standard/web/Tus.h"

#include "files/Path.h"
#include "files/Share.h"
#include "standard/http/HttpDate.h"

#include <utility>

namespace standard {

UploadName::UploadName(const Exchange &exchange)
{
    const QByteArray path = pathBelow(exchange.path(), tusPath);
    const auto slash = path.lastIndexOf('/');
    folder = exchange.access().inShare(slash < 0 ? QByteArray() : path.left(slash));
    id = path.mid(slash + 1);
}

QByteArray uploadUrl(const Exchange &exchange, const QByteArray &folder, const QByteArray &id)
{
    const UrlSpace urls = exchange.urls();
    const QByteArray path = joined(joined(tusPath, seenFrom(urls.home, folder)), id);
    return urlPath({ urls.prefix, {} }, path, false);
}

QByteArray joined(const QByteArray &folder, const QByteArray &rest)
{
    return folder.isEmpty() || rest.isEmpty() ? folder + rest : folder + '/' + rest;
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

std::optional<PartialUpload> findUpload(const Exchange &exchange)
{
    const UploadName named(exchange);
    const Share *share = exchange.share().get();
    if (!share || !PartialUpload::isId(named.id))
        return {};
    const Place beside = share->place(joined(named.folder, named.id));
    std::optional<PartialUpload> found =
        beside.isValid() ? PartialUpload::find(beside, named.id) : std::nullopt;
    const bool isTheirs = found
        && (found->record().owner.isEmpty() || found->record().owner == exchange.access().account);
    return isTheirs ? std::move(found) : std::nullopt;
}

} // namespace standard

#include "standard/web/PreviewReply.h"

#include "files/Share.h"
#include "standard/http/Protection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace standard {

namespace {

constexpr std::array<int, 3> edges{ 160, 320, 1280 }; ///< pixels
constexpr auto otherSize = "Previews have 160, 320 or 1280 pixels.";
constexpr auto noPreview = "There is no preview of this.";
constexpr auto patience = "2"; ///< seconds

/// 0 for any that there is none of.
int edgeOf(const QByteArray &text)
{
    const auto *found = std::find_if(
        edges.begin(), edges.end(), [&text](int edge) { return QByteArray::number(edge) == text; });
    return found == edges.end() ? 0 : *found;
}

/// It is another one whenever the picture is.
Validators validatorsOf(const EntryFacts &picture, const QByteArray &edge)
{
    QByteArray tag = entityTag(picture);
    return { true, tag.insert(tag.size() - 1, '/' + edge), picture.seconds };
}

/// A preview is one of two kinds.
QByteArray typeOf(int preview)
{
    char first = 0;
    constexpr char startOfPng = '\x89';
    const bool isPng = ::pread(preview, &first, 1, 0) == 1 && first == startOfPng;
    return isPng ? "image/png" : "image/jpeg";
}

} // namespace

void PreviewReply::start()
{
    const QByteArray size = formValue(exchange.request().target.query, parameter).value_or("");
    const int edge = edgeOf(size);
    if (edge == 0)
        return exchange.refuse(Status::BadRequest, otherSize);
    if (!isPermitted(Right::Read, exchange.path()) || !exchange.mayChange({}))
        return;
    if (!share() || (share()->isFolder() && exchange.namesFolder()))
        return exchange.refuse(Status::NotFound);
    const std::optional<ServedFile> picture =
        exchange.service().closedFiles.open(*share(), exchange.path());
    if (!picture)
        return exchange.refuse(errno == EISDIR ? Status::NotFound : statusOf(errno));
    KeptPreviews *previews = exchange.service().setup.keptPreviews;
    if (!previews)
        return exchange.refuse(Status::NotFound, noPreview);
    const Validators current = validatorsOf(picture->facts, size);
    fields = validatorFields(current);
    fields.push_back({ "Cache-Control", "private, no-cache" });
    if (!meetsConditions(current, fields))
        return;
    previews->want(*picture, edge, this,
                   [this](KeptPreviews::Answer told, const OpenDescriptor &preview) {
                       if (!isOver())
                           answer(told, preview);
                   });
}

void PreviewReply::ended()
{
    if (KeptPreviews *previews = exchange.service().setup.keptPreviews)
        previews->leave(this);
}

void PreviewReply::peerStopped()
{
    if (KeptPreviews *previews = exchange.service().setup.keptPreviews)
        previews->postpone(this);
}

void PreviewReply::answer(KeptPreviews::Answer answer, OpenDescriptor preview)
{
    switch (answer) {
    case KeptPreviews::Answer::Made:
        return send(std::move(preview));
    case KeptPreviews::Answer::None:
        return exchange.refuse(Status::NotFound, noPreview);
    case KeptPreviews::Answer::Later:
        return exchange.refuse(Status::Unavailable, {}, { { "Retry-After", patience } });
    }
}

void PreviewReply::send(OpenDescriptor preview)
{
    const qint64 size = openFacts(preview->get()).size;
    fields.push_back({ "Content-Type", typeOf(preview->get()) });
    addFileProtection(fields);
    if (exchange.startBody(Status::Ok, std::move(fields), size))
        exchange.sendFile(std::move(preview), 0, size);
}

} // namespace standard

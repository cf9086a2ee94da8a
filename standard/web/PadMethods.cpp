#include "standard/web/PadMethods.h"

#include "config/Profile.h"
#include "server/HttpDate.h"
#include "standard/http/Protection.h"

#include <QCryptographicHash>
#include <QString>

#include <ctime>
#include <utility>

namespace standard {

namespace {

QByteArray padTag(const QByteArray &text)
{
    return '"' + QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex() + '"';
}

} // namespace

bool PadMethod::isOpenTo(Rights needed)
{
    const bool isThere =
        exchange.service().profile->scratchPad != 0 && exchange.access().home.isEmpty();
    if (isThere && exchange.path() == padPath)
        return isPermitted(needed, {});
    exchange.refuse(Status::NotFound);
    return false;
}

/// Who may not read the text is not told either whether a guess of it is right.
bool PadMethod::meetsPadConditions()
{
    const ScratchPad &pad = exchange.service().scratchPad;
    const bool isReader = exchange.access().may(Right::Read, {});
    const Validators current =
        isReader ? Validators{ true, padTag(pad.text), pad.changed } : Validators{ true, {}, 0 };
    switch (judge(exchange.request(), current)) {
    case Verdict::Proceed:
        return true;
    case Verdict::NotModified:
        exchange.reply(Status::NotModified, padFields());
        return false;
    case Verdict::Failed:
        break;
    }
    exchange.refuse(Status::PreconditionFailed, "Somebody has changed it.");
    return false;
}

Fields PadMethod::padFields() const
{
    const ScratchPad &pad = exchange.service().scratchPad;
    return { { "ETag", padTag(pad.text) },
             { "Last-Modified", httpDate(pad.changed) },
             { "Cache-Control", "no-cache" } };
}

void PadReading::start()
{
    if (!isOpenTo(Right::Read) || !meetsPadConditions())
        return;
    Fields fields = padFields();
    fields.push_back({ "Content-Type", "text/plain; charset=utf-8" });
    addFileProtection(fields);
    exchange.reply(Status::Ok, std::move(fields), exchange.service().scratchPad.text);
}

void PadWriting::start()
{
    if (!isOpenTo(Right::Add) || !meetsPadConditions())
        return;
    if (exchange.request().field("Content-Range"))
        return exchange.refuse(Status::BadRequest, "It is written as a whole.");
    exchange.readBody(maxPad);
}

void PadWriting::bodyReady(const QByteArray &body)
{
    if (QString::fromUtf8(body).toUtf8() != body)
        return exchange.refuse(Status::UnsupportedMediaType, "It is no text in UTF-8.");
    if (exchange.share() != exchange.service().closed)
        return exchange.refuse(Status::Conflict, "Something else is shared by now.");
    // Others may have been faster.
    if (!meetsPadConditions())
        return;
    exchange.service().scratchPad = { body, qint64(::time(nullptr)) };
    exchange.reply(Status::NoContent, padFields());
}

} // namespace standard

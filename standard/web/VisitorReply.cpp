#include "standard/web/VisitorReply.h"

#include "files/Path.h"
#include "standard/http/LoginPage.h"
#include "standard/http/Protection.h"
#include "standard/http/Reserved.h"
#include "standard/web/Tus.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace standard {

namespace {

struct RightKey
{
    Right right;
    const char *key;
};

constexpr RightKey rightKeys[] = { { Right::See, "see" },
                                   { Right::Read, "read" },
                                   { Right::Add, "add" },
                                   { Right::Change, "change" },
                                   { Right::Delete, "delete" } };

QJsonValue textOrNull(bool isThere, const QByteArray &text)
{
    return isThere ? QJsonValue(QString::fromUtf8(text)) : QJsonValue();
}

/// A visitor with a home sees nothing of what is above.
QString shareName(const Exchange &exchange)
{
    const QByteArray &home = exchange.access().home;
    return home.isEmpty() ? exchange.service().shared.fileName()
                          : QString::fromUtf8(home.mid(home.lastIndexOf('/') + 1));
}

/// Of `path` of the share.
QJsonObject described(const Exchange &exchange, const QByteArray &path)
{
    const Access &access = exchange.access();
    const bool isOurs = isReserved(access.home, path);
    QJsonObject visitor{ { QStringLiteral("name"), QString::fromUtf8(access.account) },
                         { QStringLiteral("share"), shareName(exchange) } };
    for (const RightKey &each : rightKeys)
        visitor.insert(QLatin1String(each.key), !isOurs && access.may(each.right, path));
    const bool mayUpload = exchange.routes().uploads && !isOurs && access.may(Right::Add, path);
    visitor.insert(QStringLiteral("uploads"), textOrNull(mayUpload, uploadUrl(exchange, path, {})));
    visitor.insert(QStringLiteral("logout"),
                   textOrNull(access.inSession, exchange.urls().prefix + '/' + logOutPath));
    return visitor;
}

} // namespace

void VisitorReply::start()
{
    const std::optional<QByteArray> named = formValue(exchange.request().target.query, "path");
    const std::optional<QByteArray> path =
        named ? exchange.pathOf(*named) : std::optional(exchange.access().home);
    if (exchange.path() != visitorPath || !path)
        return exchange.refuse(Status::NotFound);
    Fields fields{ { "Content-Type", "application/json" }, { "Cache-Control", "no-store" } };
    addPageProtection(fields);
    exchange.reply(Status::Ok, std::move(fields),
                   QJsonDocument(described(exchange, *path)).toJson(QJsonDocument::Compact));
}

} // namespace standard

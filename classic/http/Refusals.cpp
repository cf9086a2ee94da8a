#include "classic/http/Refusals.h"

#include "files/Share.h"
#include "server/Authority.h"

#include <QCoreApplication>

namespace {

constexpr auto loginPage = "login.html";
constexpr auto challenge = "WWW-Authenticate: Basic realm=\"Private Area\"\r\n";

QByteArray pathOf(const Request &request)
{
    return request.path.mid(1).toUtf8();
}

std::optional<AuthorityReply> authorityOf(const Exchange &exchange)
{
    return authorityReply(pathOf(exchange.request), *exchange.service.profile);
}

} // namespace

StatusReply::StatusReply(Exchange &current)
    : Responder(current)
{
}

bool AuthorityFile::isAskedFor(const Exchange &exchange)
{
    const Request &request = exchange.request;
    const bool mayBe = request.isDownload() && request.path.startsWith(QLatin1String("/.quillon/"));
    if (!mayBe || !authorityOf(exchange))
        return false;
    const Service &service = exchange.service;
    return service.singleFile || !service.share
        || !service.share->facts(pathOf(exchange.request)).exists;
}

void AuthorityFile::reply()
{
    const std::optional<AuthorityReply> found = authorityOf(exchange);
    if (!found)
        return sendHeader(Status::notFound, 0);
    setContentType(found->contentType);
    sendBody(Status::ok, found->body,
             "Content-Disposition: " + found->disposition + "\r\n" + authorityProtection);
}

LoginPage::LoginPage(Exchange &current)
    : FileReply(current)
{
}

void LoginPage::reply()
{
    if (request.methodCode == Request::Head)
        return sendHeader(Status::ok, 0);
    // "200 OK" would make who wants to store something believe that it is stored.
    const bool refused = !request.onlyReads() && !request.isLogin();
    sendInstalled(exchange.service.setup.directories.language + QLatin1String(loginPage),
                  refused ? Status::forbidden : Status::ok);
}

Challenge::Challenge(Exchange &current)
    : Responder(current)
{
    setContentType("text/xml; charset=\"utf-8\"");
}

void Challenge::reply()
{
    const QString text = QCoreApplication::translate("Connection", "Wrong password");
    const QByteArray body = "<h2>" + text.toUtf8() + "</h2>";
    sendBody("401 Authorization Required", body, challenge);
}

FormTooLarge::FormTooLarge(Exchange &current)
    : Responder(current)
{
    setContentType(htmlType);
}

void FormTooLarge::reply()
{
    sendBody("413 Content Too Large",
             "<html><head><title>Quillon</title></head><body><h1>Too much at once</h1>"
             "This form is larger than 1 MB. Go back, select fewer entries and try again."
             "</body></html>");
}

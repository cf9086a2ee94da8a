#include "standard/http/LoginPage.h"

#include "files/Path.h"
#include "server/KnownAgents.h"
#include "standard/http/Exchange.h"
#include "standard/http/Html.h"
#include "standard/http/Reserved.h"

#include <algorithm>

namespace standard {

namespace {

constexpr auto pageType = "text/html";
constexpr auto wantedField = "next";

QByteArray input(const QByteArray &label, const QByteArray &id, const QByteArray &attributes)
{
    return "<label for=\"" + id + "\">" + label + "</label>\n<input id=\"" + id + "\" name=\"" + id
        + "\" " + attributes + " required>\n";
}

} // namespace

bool asksForPage(const Exchange &exchange)
{
    const Request &request = exchange.request();
    const bool isRead = request.method == Method::Get || request.isHead();
    // Some programs for files share a library with a browser, and its words with it; others ask for
    // pages by default.
    const QByteArray agent = request.value("User-Agent");
    if (!isRead || request.field("Authorization") || !agent.startsWith("Mozilla/")
        || needsStandardFace(agent)
        || request.field("Sec-Fetch-Mode").value_or("navigate") != "navigate")
        return false;
    const std::vector<QByteArray> types = listItems(request.value("Accept"));
    return std::any_of(types.begin(), types.end(), [](const QByteArray &type) {
        return type.simplified().replace(' ', "").toLower() == pageType
            || type.trimmed().toLower().startsWith(QByteArray(pageType) + ";charset");
    });
}

QByteArray loginUrl(const Exchange &exchange)
{
    return exchange.urlPath(loginPath, false) + '?' + wantedField + '='
        + encodedPath(exchange.request().target.path);
}

QByteArray urlAfterLogin(const Exchange &exchange)
{
    const QByteArray wanted =
        formValue(exchange.request().target.query, wantedField).value_or(QByteArray());
    const QByteArray path = cleanPath(wanted);
    return exchange.urlPath(isReserved(path) ? QByteArray() : path, wanted.endsWith('/'));
}

QByteArray LoginPage::html() const
{
    // Who typed a wrong password goes on with that.
    const QByteArray nameFocus = name.isEmpty() ? " autofocus" : "";
    const QByteArray passwordFocus = asksForName && name.isEmpty() ? "" : " autofocus";
    QByteArray page =
        pageBegin("Log in", "<style>" + style() + "</style>") + "<body><main><h1>Log in</h1>\n";
    if (!problem.isEmpty())
        page += "<p role=\"alert\">" + escaped(problem) + "</p>\n";
    // To where it was asked for: the address may hold a part that nobody told the server.
    page += "<form method=\"post\">\n";
    if (asksForName)
        page += input("Name", "name",
                      R"(autocomplete="username" autocapitalize="none" spellcheck="false" value=")"
                          + escaped(name) + '"' + nameFocus);
    page += input("Password", "password",
                  R"(type="password" autocomplete="current-password")" + passwordFocus);
    return page + "<button>Log in</button>\n</form></main></body></html>\n";
}

QByteArray LoginPage::style()
{
    return "body{margin:0;padding:1rem;font:1rem/1.5 system-ui,sans-serif}"
           "main{max-width:20rem;margin:8vh auto 0}"
           "h1{font-size:1.5rem;margin:0}"
           "p{margin:1rem 0 0;padding-left:.75rem;border-left:.25rem solid #d33}"
           "label{display:block;margin-top:1rem}"
           "input,button{box-sizing:border-box;width:100%;min-height:2.75rem;padding:0 .75rem;"
           "font:inherit}"
           "button{margin-top:1.5rem}";
}

QByteArray logOutForm(const Exchange &exchange)
{
    const QByteArray &account = exchange.access().account;
    return R"(<form method="post" action=")" + exchange.urls().prefix + '/' + logOutPath + "\"><p>"
        + (account.isEmpty() ? account : "Logged in as <b>" + escaped(account) + "</b> ")
        + "<button>Log out</button></p></form>\n";
}

} // namespace standard

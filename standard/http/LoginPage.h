#pragma once

#include <QByteArray>

namespace standard {

class Exchange;

/// The reserved paths where browsers log in and out.
constexpr auto loginPath = ".quillon/login";
constexpr auto logOutPath = ".quillon/logout";

/// Whether a browser sends the request to show a page to people. Programs ask for anything, and get
/// what they know: a challenge.
bool asksForPage(const Exchange &exchange);

/// The URL of the page that asks for a login, and then leads back to what the request names.
QByteArray loginUrl(const Exchange &exchange);

/// Where it leads back to, of a request for the page: always a path of ours.
QByteArray urlAfterLogin(const Exchange &exchange);

/// What the page says.
struct LoginPage
{
    bool asksForName = false;
    QByteArray name; ///< as it was typed
    QByteArray problem; ///< why it is shown again; empty the first time

    QByteArray html() const;

    /// The rules that it is shown by, for `addFormProtection`.
    static QByteArray style();
};

/// For the other pages of who has logged in.
QByteArray logOutForm(const Exchange &exchange);

} // namespace standard

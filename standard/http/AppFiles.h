#pragma once

#include <QByteArray>

#include <optional>

namespace standard {

/// Below it stand the files of the web application. They are compiled into the program, which may
/// be built without them.
constexpr auto appPath = ".quillon/app";
bool hasApp();

/// What the head of a page holds to have the application take over, as HTML. `prefix` begins all
/// paths outside, see `Forwarded`; `nonce` is that of the page, see `addAppProtection`. Empty when
/// there is no application.
QByteArray appHead(const QByteArray &prefix, const QByteArray &nonce);

struct AppFile
{
    QByteArray content; ///< not a copy
    QByteArray encoding; ///< of the content; empty when it is as it is
};

/// A file of the application, in the smallest form that `accepted` (Accept-Encoding) allows. None
/// when there is no such file.
std::optional<AppFile> appFile(const QByteArray &name, const QByteArray &accepted);

} // namespace standard

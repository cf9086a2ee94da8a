#pragma once

#include <QByteArray>

/// Whether a page of another site made the browser send a request, by what its lines
/// Sec-Fetch-Site and Origin say; empty for a line that it lacks. `host` is what the visitor calls
/// this server, with the port where it isn't the scheme's own, and `encrypted` is how it is called:
/// what came unencrypted may be anybody's. Programs that are no browsers send neither line.
bool isCrossSite(const QByteArray &fetchSite, const QByteArray &origin, const QByteArray &host,
                 bool encrypted);

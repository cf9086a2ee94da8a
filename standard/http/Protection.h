#pragma once

#include "standard/http/Request.h"

namespace standard {

/// What the replies say to browsers that hold pages of ours: nothing is fetched for them, no other
/// site shows, opens or reads them, and none hears of them.
void addPageProtection(Fields &fields);

/// The same of pages with forms, which are sent to this server alone, and with `style` in a style
/// element of their own.
void addFormProtection(Fields &fields, const QByteArray &style = {});

/// The same of pages that the web application takes over, which talks to this server alone. Scripts
/// run when the page names them with `nonce`, a secret of its own, since files of the share come
/// from this server as well.
void addAppProtection(Fields &fields, const QByteArray &nonce);

/// What is served is somebody's file, never a part of this program: its scripts don't run, and no
/// other site embeds it.
void addFileProtection(Fields &fields);

} // namespace standard

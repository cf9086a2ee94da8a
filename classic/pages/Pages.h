#pragma once

#include <QByteArray>

/// The pages beside the listing, whole. Paths are URL paths in UTF-8.

/// The form that uploads a file into the folder `path`.
QByteArray uploadPage(const QByteArray &path, bool picture);

/// The form that creates a folder in the folder `path`.
QByteArray createPage(const QByteArray &path, bool picture);

/// What the desktop client is told when it starts.
struct ClientLaunch
{
    QByteArray path; ///< of the folder to show
    qint64 session = 0;
    QByteArray credentials; ///< "user:password"; may be empty
};

/// The page that runs the client as an applet.
QByteArray appletPage(ClientLaunch launch);

/// The descriptor (JNLP) that starts the client in a window of its own. `baseUrl` is the server's
/// address as this browser knows it, ending in "/".
QByteArray launchDescriptor(const QByteArray &baseUrl, const ClientLaunch &launch);

/// The functions that ask before folders are deleted, for the listing.
QByteArray deleteScripts();

#pragma once

#include "files/FileDescriptor.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <map>

class Profile;
class ServerRow;
class ServerRows;
class WebServer;

/// Has a server found in the network until the descriptor is closed.
using Announce = std::function<FileDescriptor(const WebServer &server, const Profile &profile)>;

/// Has those rows found in the network that run and whose profile wants that. A part of the main
/// window.
class Announcements : public QObject
{
    Q_OBJECT
public:
    /// `servers` are borrowed and outlive it. Nobody is found without an `announce`.
    Announcements(ServerRows *servers, Announce announce);

private:
    void follow(ServerRow *row);
    void update(ServerRow *row);

    struct Announced
    {
        QStringList facts;
        FileDescriptor end; ///< of the announcement, once it is closed
    };

    const Announce start;
    std::map<const ServerRow *, Announced> announced;
};

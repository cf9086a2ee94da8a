#include "app/Announcing.h"

#include "config/Profile.h"
#include "platform/Announcement.h"
#include "server/WebServer.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QNetworkInterface>
#include <QProcess>

#include <algorithm>
#include <array>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Clients that would try the other version first had to wait until they give up.
Announcement::IpVersion versionOf(const QHostAddress &listening)
{
    switch (listening.protocol()) {
    case QAbstractSocket::IPv4Protocol:
        return Announcement::IpVersion::V4;
    case QAbstractSocket::IPv6Protocol:
        return Announcement::IpVersion::V6;
    default:
        return Announcement::IpVersion::Any;
    }
}

/// Index of the interface with this address; -1: there is none, as it stands for all.
int interfaceOf(const QHostAddress &listening)
{
    const QList<QNetworkInterface> all = QNetworkInterface::allInterfaces();
    const auto found =
        std::find_if(all.begin(), all.end(), [&listening](const QNetworkInterface &each) {
            const QList<QNetworkAddressEntry> entries = each.addressEntries();
            return std::any_of(entries.begin(), entries.end(),
                               [&listening](const QNetworkAddressEntry &entry) {
                                   return entry.ip() == listening;
                               });
        });
    return found == all.end() ? -1 : found->index();
}

QByteArray announcementOf(const WebServer &server, const Profile &profile)
{
    Announcement announcement;
    announcement.name = profile.announcedName;
    announcement.port = server.port;
    announcement.isTls = server.isTlsReady();
    if (profile.authMode == AuthBasic && profile.users.size() == 1)
        announcement.user = accountName(profile.users.constFirst());
    announcement.ipVersion = versionOf(server.ip());
    announcement.interface = interfaceOf(server.ip());
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << announcement;
    return bytes;
}

} // namespace

FileDescriptor startAnnouncing(const WebServer &server, const Profile &profile)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    const FileDescriptor reading(ends.front());
    FileDescriptor writing(ends.back());
    const QByteArray bytes = announcementOf(server, profile);
    if (::write(writing.get(), bytes.constData(), std::size_t(bytes.size())) != bytes.size())
        return {};
    QProcess program;
    program.setProgram(QCoreApplication::applicationDirPath() + QLatin1String("/quillon-announce"));
    program.setStandardInputFile(QStringLiteral("/proc/self/fd/%1").arg(reading.get()));
    return program.startDetached() ? std::move(writing) : FileDescriptor();
}

#pragma once

#include <QDataStream>
#include <QString>
#include <QSysInfo>

/// A server that others in the network are to find.
struct Announcement
{
    /// Where it can be reached; the numbers are Avahi's.
    enum class IpVersion { Any = -1, V4 = 0, V6 = 1 };

    QString name; ///< as people see it; empty: by the name of this machine
    quint16 port = 0;
    bool isTls = false;
    QString user; ///< whom to log in as; empty when there is no such account, or several
    IpVersion ipVersion = IpVersion::Any;
    int interface = -1; ///< index of the only network interface that leads there; -1: any

    QString nameOrDefault() const
    {
        const QString given = name.simplified();
        return given.isEmpty() ? QLatin1String("Share on ") + QSysInfo::machineHostName() : given;
    }
};

// How one program tells another.

inline QDataStream &operator<<(QDataStream &to, const Announcement &announcement)
{
    return to << announcement.name << announcement.port << announcement.isTls << announcement.user
              << qint32(announcement.ipVersion) << qint32(announcement.interface);
}

inline QDataStream &operator>>(QDataStream &from, Announcement &announcement)
{
    qint32 ipVersion = 0;
    qint32 interface = 0;
    from >> announcement.name >> announcement.port >> announcement.isTls >> announcement.user
        >> ipVersion >> interface;
    announcement.ipVersion = Announcement::IpVersion(ipVersion);
    announcement.interface = interface;
    return from;
}

#pragma once

#include "tests/support/Files.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// A bus with nobody on it but who is brought along. It could start Avahi, which then shows.
struct PrivateBus
{
    PrivateBus()
    {
        const auto write = [this](const char *name, QByteArray text) {
            writeFile(dir.filePath(QString::fromLatin1(name)),
                      text.replace('%', dir.path().toUtf8()));
        };
        write("a.service",
              "[D-BUS Service]\nName=org.freedesktop.Avahi\nExec=/usr/bin/touch %/started\n");
        write("rules",
              "<busconfig><type>session</type><listen>unix:dir=%</listen><servicedir>%</"
              "servicedir><policy context='default'><allow send_destination='*'/><allow "
              "receive_sender='*'/><allow own='*'/></policy></busconfig>");
        daemon.start(
            "dbus-daemon"_q,
            { "--nofork"_q, "--print-address"_q, "--config-file="_q + dir.filePath("rules"_q) });
        daemon.waitForReadyRead();
        address = QString::fromLatin1(daemon.readLine().trimmed());
    }
    ~PrivateBus()
    {
        daemon.kill();
        daemon.waitForFinished();
    }
    QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(address, address + name);
    }
    bool startedAvahi() const { return QFile::exists(dir.filePath("started"_q)); }

    QTemporaryDir dir;
    QProcess daemon;
    QString address;
};

using Answers = QHash<QString, QVariantList>; ///< by method

/// Stands for another program: writes down what it is asked, as text, and answers as it was told.
struct StandIn : QDBusVirtualObject
{
    StandIn(QDBusConnection where, const QString &service, Answers told)
        : bus(std::move(where))
        , answers(std::move(told))
    {
        bus.registerVirtualObject("/"_q, this, QDBusConnection::SubPath);
        bus.registerService(service);
    }
    ~StandIn() override { QDBusConnection::disconnectFromBus(bus.name()); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QString call = message.member();
        for (const QVariant &argument : message.arguments()) {
            const auto texts = qvariant_cast<QDBusArgument>(argument);
            call += QLatin1Char(' ')
                + (texts.currentSignature() == "aay"_q
                       ? QString::fromUtf8(qdbus_cast<QByteArrayList>(texts).join(' '))
                       : argument.toString());
        }
        calls.append(call);
        const QString error = errors.take(message.member());
        return connection.send(error.isEmpty()
                                   ? message.createReply(answers.value(message.member()))
                                   : message.createErrorReply(error, "no"_q));
    }

    /// What was asked since the last time, up to the method `last`, with "; " between.
    QString takenUpTo(const QString &last)
    {
        static_cast<void>(QTest::qWaitFor(
            [this, &last] { return !calls.isEmpty() && calls.constLast().startsWith(last); }));
        return std::exchange(calls, {}).join("; "_q);
    }

    QDBusConnection bus;
    Answers answers;
    QHash<QString, QString> errors; ///< by method, each for one call
    QStringList calls;
};

/// Avahi, as far as it is asked.
struct StandInAvahi : StandIn
{
    explicit StandInAvahi(const PrivateBus &where)
        : StandIn(where.connection("Avahi"_q), "org.freedesktop.Avahi"_q,
                  { { "EntryGroupNew"_q, { QVariant::fromValue(QDBusObjectPath("/group"_q)) } },
                    { "GetAlternativeServiceName"_q, { "Files #2"_q } } })
    {
    }

    /// Of the object of a class ("Server", "EntryGroup").
    void tellState(const QString &path, const QString &ofWhat, int state)
    {
        bus.send(
            QDBusMessage::createSignal(path, "org.freedesktop.Avahi."_q + ofWhat, "StateChanged"_q)
            << state << "why"_q);
    }
};

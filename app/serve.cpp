#include "app/AllFaces.h"
#include "app/Announcing.h"
#include "app/Console.h"
#include "app/MemoryReserve.h"
#include "app/Process.h"
#include "app/Renewing.h"
#include "app/ServerRules.h"
#include "app/ServiceManager.h"
#include "app/WorkingFolder.h"
#include "config/ProfileText.h"
#include "config/Profiles.h"
#include "config/Utf8Names.h"
#include "files/Previews.h"
#include "server/Authority.h"
#include "server/Engine.h"
#include "server/KeyTool.h"
#include "server/PasswordHash.h"
#include "server/Url.h"
#include "server/WebServer.h"
#include "standard/http/AppFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QNetworkInterface>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace {

enum ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

struct Options
{
    QHostAddress address{ QHostAddress::AnyIPv4 };
    std::optional<quint16> port; ///< absent: the profile's
    QString profile; ///< empty: the global one
    std::optional<FaceMode> mode; ///< absent: the profile's
    QStringList proxies; ///< to trust beside the profile's
    QStringList names; ///< of this server beside the profile's
    std::optional<QByteArray> pathPrefix; ///< absent: the profile's
    bool defaultProfile = false; ///< none of the stored ones
    bool announced = false; ///< whatever the profile says
    QString announcedName; ///< empty: the profile's
    bool sandbox = true;
    QString path; ///< as given
};

/// Not translated: scripts read these lines.
QString text(const char *english)
{
    return QString::fromLatin1(english);
}

int usageError(Console *console, const QString &problem)
{
    console->error(problem + QLatin1Char('\n') + text("Try --help."));
    return WrongUsage;
}

/// What the command line may say.
struct CommandLine
{
    QCommandLineParser parser;
    // Not the toolkit's own: with it comes an option for more help, of which there is none.
    const QCommandLineOption help{ { QStringLiteral("h"), QStringLiteral("help") },
                                   text("Say what there is.") };
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption address{ QStringLiteral("address"),
                                      text("Listen on this address only."),
                                      QStringLiteral("ADDR") };
    const QCommandLineOption port{ QStringLiteral("port"),
                                   text("Listen on this port; 0 takes a free one."),
                                   QStringLiteral("N") };
    const QCommandLineOption profile{ QStringLiteral("profile"),
                                      text("Use the profile of this name."),
                                      QStringLiteral("NAME") };
    const QCommandLineOption mode{
        QStringLiteral("mode"),
        text("Answer as always (classic), as the standards say (standard), or so only to the "
             "programs that need it (auto)."),
        QStringLiteral("MODE")
    };
    const QCommandLineOption trustProxy{
        QStringLiteral("trust-proxy"),
        text("Believe the proxy at this address who asks for what (X-Forwarded-*); may be given "
             "several times."),
        QStringLiteral("ADDR")
    };
    const QCommandLineOption name{
        QStringLiteral("name"),
        text("Answer to this host name too, where others are refused (strict); may be given "
             "several times."),
        QStringLiteral("NAME")
    };
    const QCommandLineOption pathPrefix{
        QStringLiteral("path-prefix"),
        text("What a trusted proxy leaves in front of all paths, like /share."),
        QStringLiteral("PATH")
    };
    const QCommandLineOption announce{
        QStringLiteral("announce"),
        text("Let others in the network find the server by name (DNS-SD, by way of Avahi).")
    };
    const QCommandLineOption announceAs{ QStringLiteral("announce-as"),
                                         text("The same, with this name."),
                                         QStringLiteral("NAME") };
    const QCommandLineOption hash{
        QStringLiteral("hash"),
        text(
            "Read a password from standard input and print its hash, for a profile's text file.")
    };
    const QCommandLineOption defaults{
        QStringLiteral("default-profile"),
        text("Use the default values and no stored profile: no password, deleting allowed.")
    };
    const QCommandLineOption noSandbox{
        QStringLiteral("no-sandbox"),
        text("Don't have the kernel keep the server from what it has no need of: programs, "
             "connections to others, and with a strict profile or in mode standard all files but "
             "the shared ones, its own and the system's.")
    };

    CommandLine()
    {
        parser.setApplicationDescription(
            text("Serves a file or folder to browsers and WebDAV clients."));
        parser.addOptions({ help, address, port, mode, trustProxy, name, pathPrefix, profile,
                            defaults, announce, announceAs, hash, noSandbox });
        parser.addPositionalArgument(QStringLiteral("PATH"), text("The file or folder to serve."));
    }
};

/// The exit status.
int printHash(Console *console)
{
    QFile input;
    QByteArray password = input.open(0, QFile::ReadOnly) ? input.readLine() : QByteArray();
    if (password.endsWith('\n'))
        password.chop(1);
    if (password.isEmpty()) {
        console->error(text("There is no password on standard input."));
        return Failed;
    }
    const QByteArray hash = newPasswordHash(password);
    if (hash.isEmpty()) {
        console->error(text("There is no memory to make a hash."));
        return Failed;
    }
    console->print(QString::fromLatin1(hash));
    return Done;
}

/// Prints what is asked for instead of serving; false when nothing is.
bool printsInformation(Console *console, const CommandLine &line)
{
    if (line.parser.isSet(line.help))
        console->print(line.parser.helpText());
    else if (line.parser.isSet(line.version))
        console->print(QCoreApplication::applicationName() + QLatin1Char(' ')
                       + QCoreApplication::applicationVersion());
    else
        return false;
    return true;
}

// These take values over from the command line and give what is wrong with them, or nothing.

QString takeAddress(const CommandLine &line, Options *options)
{
    const QString given = line.parser.value(line.address);
    if (line.parser.isSet(line.address) && !options->address.setAddress(given))
        return text("This is no address: %1").arg(given);
    // "::" is meant to reach everyone, but the toolkit takes it for IPv6 alone.
    if (options->address == QHostAddress(QHostAddress::AnyIPv6))
        options->address = QHostAddress(QHostAddress::Any);
    return {};
}

QString takePort(const CommandLine &line, Options *options)
{
    if (!line.parser.isSet(line.port))
        return {};
    bool isNumber = false;
    options->port = line.parser.value(line.port).toUShort(&isNumber);
    return isNumber ? QString()
                    : text("This is no port from 0 to 65535: %1").arg(line.parser.value(line.port));
}

QString takeMode(const CommandLine &line, Options *options)
{
    if (!line.parser.isSet(line.mode))
        return {};
    const QString given = line.parser.value(line.mode);
    options->mode = faceModeOf(given.toUtf8());
    return options->mode ? QString()
                         : text("This is no mode: %1 (use classic, auto or standard)").arg(given);
}

QString takeProxies(const CommandLine &line, Options *options)
{
    options->proxies = line.parser.values(line.trustProxy);
    for (const QString &given : std::as_const(options->proxies)) {
        if (QHostAddress(given).isNull())
            return text("This is no address: %1").arg(given);
    }
    return {};
}

QString takeNames(const CommandLine &line, Options *options)
{
    for (const QString &given : line.parser.values(line.name)) {
        const std::optional<QString> name = hostNameOf(given.toUtf8());
        if (!name)
            return text("This is no host name: %1").arg(given);
        options->names.append(*name);
    }
    return {};
}

QString takePathPrefix(const CommandLine &line, Options *options)
{
    if (!line.parser.isSet(line.pathPrefix))
        return {};
    const QString given = line.parser.value(line.pathPrefix);
    options->pathPrefix = pathPrefixOf(given.toUtf8());
    return options->pathPrefix ? QString() : text("This is no path for URLs: %1").arg(given);
}

QString takeOptions(const CommandLine &line, Options *options)
{
    const QStringList paths = line.parser.positionalArguments();
    if (paths.size() != 1)
        return text("Name one file or folder to serve.");
    options->path = paths.constFirst();
    options->profile = line.parser.value(line.profile);
    options->defaultProfile = line.parser.isSet(line.defaults);
    options->announced = line.parser.isSet(line.announce) || line.parser.isSet(line.announceAs);
    options->announcedName = line.parser.value(line.announceAs);
    options->sandbox = !line.parser.isSet(line.noSandbox);
    if (options->defaultProfile && line.parser.isSet(line.profile))
        return text("--profile and --default-profile exclude each other.");
    for (const auto take :
         { takeAddress, takePort, takeMode, takeProxies, takeNames, takePathPrefix }) {
        if (QString problem = take(line, options); !problem.isEmpty())
            return problem;
    }
    return {};
}

/// Why `path` can't be served; empty when it can.
QString problemWith(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return text("There is no such file or folder: %1").arg(path);
    if (!info.isFile() && !info.isDir())
        return text("This is neither a file nor a folder: %1").arg(path);
    if (!info.isReadable() || (info.isDir() && !info.isExecutable()))
        return text("This can't be read: %1").arg(path);
    return {};
}

/// The addresses at which clients reach a socket that listens on `listening`.
QList<QHostAddress> reachableAt(const QHostAddress &listening)
{
    const bool any4 = listening == QHostAddress(QHostAddress::AnyIPv4);
    if (!any4 && listening != QHostAddress(QHostAddress::Any))
        return { listening };

    QList<QHostAddress> addresses;
    const QList<QHostAddress> own = QNetworkInterface::allAddresses();
    std::copy_if(own.begin(), own.end(), std::back_inserter(addresses),
                 [any4](const QHostAddress &address) {
                     return !any4 || address.protocol() == QAbstractSocket::IPv4Protocol;
                 });
    return addresses;
}

void printAddresses(Console *console, const WebServer &server, const QString &path)
{
    const QList<QHostAddress> addresses = reachableAt(server.ip());
    for (const QHostAddress &address : addresses) {
        console->print(text("Serving %1 at %2/")
                           .arg(path, serverUrl(server.isTlsReady(), address, server.port)));
    }
}

void reportLimit(Console *console, const WebServer &server)
{
    console->error(
        text("The traffic limit of %1 bytes is reached: sent %2 bytes, received %3 bytes.")
            .arg(server.dataLimitBytes())
            .arg(server.sentBytes())
            .arg(server.receivedBytes()));
}

/// The stored profile to serve with; null, and the user knows why, when there is none.
Profile *storedProfile(Console *console, const Options &options, const Profiles &profiles)
{
    Profile *profile =
        options.profile.isEmpty() ? profiles.global() : profiles.find(options.profile);
    if (!profile) {
        console->error(text("There is no profile of this name: %1").arg(options.profile));
        return nullptr;
    }
    if (profile->fileState() == Profile::FileState::TextUnreadable) {
        console->error(text("A file of the profile can't be read: %1 (make it readable, or use "
                            "--default-profile to serve with the default values)")
                           .arg(profile->fileInTheWay()));
        return nullptr;
    }
    if (!profile->isUsable()) {
        console->error(text("The profile is damaged or can't be read: %1 (restore the file, remove "
                            "%1.sum if you changed the file on purpose, or use "
                            "--default-profile to serve with the default values)")
                           .arg(profile->fileName()));
        return nullptr;
    }
    if (profile->refusedPort()) {
        console->error(text("The profile's port %1 is none; %2 is used.")
                           .arg(*profile->refusedPort())
                           .arg(profile->port));
    }
    if (const QString file = profile->textSetAside(); !file.isEmpty()) {
        console->error(text("%1 could not be read and is now called %1.bad; the default values "
                            "are used for what it said.")
                           .arg(file));
    }
    return profile;
}

/// What is announced is withdrawn once the descriptor is closed.
FileDescriptor announce(Console *console, const WebServer &server, const Profile &profile)
{
    if (profile.announced == 0)
        return {};
    FileDescriptor announcing = startAnnouncing(server, profile);
    if (!announcing.isOpen())
        console->error(text("Not found in the network: quillon-announce can't be started."));
    return announcing;
}

/// Takes from this process what serving has no need of, and says whether the kernel could. Keys are
/// loaded and the socket listens by now, while no job has started a thread yet.
void confineServer(Console *console, const QString &path, const Profile &profile)
{
    const bool strict = profile.isStrict();
    switch (confine(serverRules(path, profile))) {
    case Confinement::None:
        return console->error(text("Not confined: the kernel can't (Landlock)."));
    case Confinement::Files:
        return console->error(strict ? text("Confined by the kernel: no other files, no programs.")
                                     : text("Confined by the kernel: no programs."));
    case Confinement::FilesAndNetwork:
        return console->error(
            strict ? text("Confined by the kernel: no other files, no programs, no connections.")
                   : text("Confined by the kernel: no programs, no connections."));
    }
}

/// Before anything of it is read, while programs may be started.
void renewCertificate(Console *console, const Profile &profile)
{
    if (!profile.usesTls() || !KeyTool::canRenew(profile.publicKeyFile))
        return;
    KeyTool tool(profile.publicKeyFile);
    QObject::connect(&tool, &KeyTool::ended, &tool, [console](const QString &problem) {
        if (!problem.isEmpty())
            console->error(text("The certificate was not renewed: %1").arg(problem));
    });
    tool.start();
    tool.wait();
}

/// From now on, while addresses come and go.
std::unique_ptr<Renewing> keepRenewing(Console *console, WebServer &server, const Profile &profile)
{
    if (!profile.usesTls() || !KeyTool::canRenew(profile.publicKeyFile))
        return nullptr;
    auto renewing = std::make_unique<Renewing>(profile.publicKeyFile);
    QObject::connect(renewing.get(), &Renewing::renewed, &server, &WebServer::reloadKeys);
    QObject::connect(renewing.get(), &Renewing::failed, renewing.get(), [console] {
        console->error(text("The certificate was not renewed for this computer's addresses."));
    });
    return renewing;
}

/// What visitors compare before they trust it. Without TLS nothing loads the libraries for it.
void tellAuthority(Console *console, const Profile &profile)
{
    if (!profile.usesTls())
        return;
    const QSslCertificate authority = authorityOf(profile.publicKeyFile);
    if (!authority.isNull())
        console->error(text("Fingerprint (SHA-256) of the authority at /%1: %2")
                           .arg(QLatin1String(authorityPagePath),
                                fingerprintRows(authority).join(QLatin1Char(':'))));
}

void tellApplication(Console *console, const Profile &profile)
{
    if (profile.faceMode != FaceStandard && standard::hasApp())
        console->error(text("Browsers get simple pages, and the web application with "
                            "--mode standard."));
}

/// Serves the file or folder `path` until a signal or the traffic limit ends it.
int serve(Console *console, const Options &options, const QString &path, const Profiles &profiles,
          ServiceManager *manager)
{
    Profile defaults(profiles.directories());
    const Profile *stored =
        options.defaultProfile ? &defaults : storedProfile(console, options, profiles);
    if (!stored)
        return Failed;
    // What the command line says is for this run alone.
    const std::unique_ptr<Profile> profile = stored->clone();
    profile->faceMode = options.mode.value_or(FaceMode(profile->faceMode));
    if (options.announced)
        profile->announced = 1;
    if (!options.announcedName.isEmpty())
        profile->announcedName = options.announcedName;
    profile->trustedProxies += options.proxies;
    profile->names += options.names;
    profile->pathPrefix = options.pathPrefix.value_or(profile->pathPrefix);

    renewCertificate(console, *profile);
    ConsoleSink sink(console);
    QNetworkAddressEntry entry;
    entry.setIp(options.address);
    Previews previews(previewProgram(), previewFolder());
    Engine engine(allFaces(), profiles.directories(), &sink, &previews);
    const MemoryReserve reserve(*engine.setup()->memory);
    WebServer server(entry, profile.get(), engine.setup());
    server.setShared(path);
    server.port = options.port.value_or(quint16(profile->port));
    if (profile->usesTls() && !server.isTlsReady()) {
        console->error(
            text("The profile asks for TLS, but its key and certificate can't be used."));
        return Failed;
    }
    if (!server.start(manager->takeSocket())) {
        console->error(text("Can't listen on %1:%2: %3")
                           .arg(hostPart(options.address), QString::number(server.port),
                                server.errorString()));
        return Failed;
    }
    QObject::connect(&server, &WebServer::dataLimit, &server, [console](WebServer *reached) {
        reached->stopAll();
        reportLimit(console, *reached);
        QCoreApplication::exit(Done);
    });
    if (profile->opensHome(path))
        console->error(text("Warning: Everyone who reaches this computer could read, change and "
                            "delete all of %1")
                           .arg(path));
    const FileDescriptor announcing = announce(console, server, *profile);
    const std::unique_ptr<Renewing> renewing = keepRenewing(console, server, *profile);
    if (options.sandbox)
        confineServer(console, path, *profile);
    printAddresses(console, server, options.path);
    tellAuthority(console, *profile);
    tellApplication(console, *profile);
    manager->tellReady();
    profiles.beginRun(); // clients need not wait for the disk
    const int status = QCoreApplication::exec();
    manager->tellStopping();
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    useUtf8Names();
    prepareProcess();
    const EndSignals endSignals;
    // A turn of the toolkit's own event loop costs less than one of GLib's.
    qputenv("QT_NO_GLIB", "1");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quillon-serve"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLON_VERSION));

    Console console;
    CommandLine line;
    const bool parsed = line.parser.parse(QCoreApplication::arguments());
    if (printsInformation(&console, line))
        return Done;
    if (parsed && line.parser.isSet(line.hash))
        return printHash(&console);
    Options options;
    const QString mistake = parsed ? takeOptions(line, &options) : line.parser.errorText();
    if (!mistake.isEmpty())
        return usageError(&console, mistake);
    if (const QString problem = problemWith(options.path); !problem.isEmpty()) {
        console.error(problem);
        return Failed;
    }
    ServiceManager manager;
    if (!manager.problem().isEmpty()) {
        console.error(manager.problem());
        return Failed;
    }
    const Directories directories = Directories::ofProcess();
    if (!directories.makeProfileFolder()) {
        console.error(text("Can't make the folder %1").arg(directories.profiles));
        return Failed;
    }

    const QString shared = QFileInfo(options.path).absoluteFilePath();
    const WorkingFolder workingFolder(directories.cache);
    if (!workingFolder.isEntered()) {
        console.error(text("Can't make the folder %1").arg(directories.cache));
        return Failed;
    }

    endSignals.quitOnFirst(&app);
    Profiles profiles(directories);
    Previews::sweep(previewFolder());
    const int status = serve(&console, options, shared, profiles, &manager);
    if (!profiles.endInOrder())
        console.error(text("The profile could not be saved in %1").arg(directories.profiles));
    return status;
}

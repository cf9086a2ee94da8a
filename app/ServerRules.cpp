#include "app/ServerRules.h"

#include "app/Process.h"
#include "config/Profile.h"
#include "server/KeyTool.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

/// What libraries read when they are first used: their own parts, the time zone, names of hosts,
/// certificates.
constexpr const char *ofTheSystem[] = {
    "/usr",
    "/lib",
    "/lib32",
    "/lib64",
    "/etc/ld.so.cache",
    "/etc/localtime",
    "/etc/timezone",
    "/etc/resolv.conf",
    "/etc/hosts",
    "/etc/host.conf",
    "/etc/nsswitch.conf",
    "/etc/gai.conf",
    "/etc/ssl/openssl.cnf",
    "/etc/ssl/certs",
    "/etc/pki/tls/openssl.cnf",
    "/etc/pki/tls/certs",
    "/proc/self",
    "/dev/null",
    "/dev/urandom",
};

QStringList readableFor(const Directories &directories)
{
    QStringList paths;
    for (const char *path : ofTheSystem)
        paths.append(QString::fromLatin1(path));
    return paths + QCoreApplication::libraryPaths() + QStringList{ directories.resources }
    + QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QStringLiteral("mime"),
                                QStandardPaths::LocateDirectory);
}

/// A file can only be replaced, and found again after an editor has replaced it, by way of its
/// folder.
QString folderOf(const QString &shared)
{
    const QFileInfo info(shared);
    return info.isDir() ? shared : info.canonicalPath();
}

} // namespace

SandboxRules serverRules(const QString &shared, const Profile &profile)
{
    SandboxRules rules;
    rules.programs = QStringList{ previewProgram() };
    if (!profile.isStrict()) {
        rules.files = SandboxRules::Files::All;
        return rules;
    }
    QDir().mkpath(previewFolder());
    rules.readable = readableFor(profile.directories());
    rules.writable = QStringList{ profile.directories().profiles, previewFolder(),
                                  profile.directories().cache, QStringLiteral("/dev/null") };
    // A renewed certificate is another file of the same name; the key is read with it.
    if (profile.usesTls() && KeyTool::canRenew(profile.publicKeyFile))
        rules.readable += { folderOf(profile.publicKeyFile), folderOf(profile.privateKeyFile) };
    QStringList &shares = profile.letsSomebodyChange() ? rules.writable : rules.readable;
    shares.append(folderOf(shared));
    return rules;
}

// Stores a profile in the folder of the profiles, as the window's settings would:
//   make-profile NAME [tls KEY CERTIFICATE]
#include "config/Profiles.h"

#include <QCoreApplication>
#include <QFile>

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const Directories directories = Directories::ofProcess();
    if ((arguments.size() != 2 && arguments.size() != 5) || !directories.makeProfileFolder())
        return 2;
    Profile profile(directories);
    profile.name = arguments.at(1);
    profile.setFileName(profile.name);
    if (arguments.size() == 5) {
        profile.sslMode = Qt::Checked;
        profile.privateKeyFile = arguments.at(3);
        profile.publicKeyFile = arguments.at(4);
    }
    return profile.save() ? 0 : 1;
}

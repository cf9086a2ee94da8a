#include "config/Profile.h"

/// make_profile NAME [ACCOUNT [KEY CERTIFICATE]]: stores a profile of this name that asks for the
/// account ("name:password"), and for TLS with these files.
int main(int argc, char **argv)
{
    const Directories directories = Directories::ofProcess();
    if (argc < 2 || !directories.makeProfileFolder())
        return 2;
    const auto argument = [argv](int number) { return QString::fromLocal8Bit(argv[number]); };
    Profile profile(directories);
    profile.setFileName(argument(1));
    profile.name = argument(1);
    profile.syncPolicy = SyncNothing; // the speed of the disk is not what is tried
    if (argc > 2) {
        profile.authMode = AuthBasic;
        profile.users = QStringList{ argument(2) };
    }
    if (argc > 4) {
        profile.sslMode = Qt::Checked;
        profile.privateKeyFile = argument(3);
        profile.publicKeyFile = argument(4);
    }
    return profile.save() ? 0 : 1;
}

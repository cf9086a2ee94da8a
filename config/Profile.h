#pragma once

#include "config/Directories.h"
#include "config/Rights.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

/// How a server asks its clients who they are. The values stand in profile files.
enum AuthMode { AuthNone = 0, AuthPasswordPage = 1, AuthBasic = 2 };

/// Whom the two faces of the server answer: the classic one as it always has, the standard one as
/// the RFCs say.
enum FaceMode : int {
    FaceClassic = 0, ///< everybody gets the classic one
    FaceAuto = 1, ///< programs that are known to need it get the standard one
    FaceStandard = 2 ///< everybody gets the standard one
};

/// What of an upload must have reached the disk before the server says that it is stored.
enum SyncPolicy { SyncNothing = 0, SyncFile = 1, SyncFileAndFolder = 2 };

/// What a profile says: every value that an editor changes and `Profile::equals` compares.
/// The check states hold what a check box holds: 0 unchecked, 2 checked.
struct ProfileValues
{
    /// HTTP Basic accounts, each "name:password", or the hash of that, see `isPasswordHash`. Those
    /// with a hash stand in the text file.
    QStringList users;
    QStringList recentFiles; ///< newest first, at most `Profile::maxRecentFiles`
    qint32 port = 8080;
    qint32 sslMode = 0; ///< check state
    bool expertMode = false;
    qint32 showFolders = 2; ///< check state
    qint32 showImages = 2; ///< check state
    qint32 enableDelete = 2; ///< check state
    qint32 enableUpload = 2; ///< check state
    qint32 authMode = AuthNone;
    qint32 warningMode = 2; ///< check state
    qint32 dnsEnabled = 0; ///< check state
    qint32 maxConnections = 4; ///< most pending connections of a listening socket
    qint32 dataLimit = 0; ///< KB of 1024 bytes, 0 = no limit
    qint32 sessionLifetime = 600; ///< seconds of idleness
    QString name;
    QString password; ///< of the login page, or its hash, which stands in the text file too
    QString dnsUser;
    QString dnsPassword;
    QString privateKeyFile;
    QString publicKeyFile; ///< the certificate
    QString keyPassword;

    // These stand in the text file beside the profile's own.
    qint32 faceMode = FaceAuto;
    qint32 syncPolicy = SyncFile;
    qint32 deepListings = 1; ///< whether the standard face lists whole trees, 0 or 1
    qint32 scratchPad = 0; ///< whether visitors share a text, 0 or 1
    qint32 strict = 0; ///< see `isStrict`, 0 or 1
    QStringList trustedProxies; ///< addresses of those whose word is taken for who asked for what
    QStringList names; ///< hosts that this server is called by elsewhere; see `hostNameOf`
    qint32 announced = 0; ///< whether others in the network find it by DNS-SD, 0 or 1
    QString announcedName; ///< as people see it there; empty: by the name of the machine
    QByteArray pathPrefix; ///< that they leave on paths; see `pathPrefixOf`
    std::optional<Rights> everyone; ///< rights; none: those of the switches
    QMap<QString, AccountRights> accountRights; ///< by name

    /// What everyone may do: as the switches say, unless there is more to say.
    Rights switchedRights() const;
    Rights rightsOfEveryone() const { return everyone.value_or(switchedRights()); }

    /// Whether it says itself who may do what. Then nothing is left to what the switches reach.
    bool statesRights() const { return everyone || !accountRights.isEmpty(); }

    /// Whether there is anybody who may change anything.
    bool letsSomebodyChange() const;

    /// The HTTP Basic accounts with a readable password that can be used: an entry without a user
    /// would admit everybody.
    QStringList accounts() const;

    /// What the password of `user`, or, with the login page, of anybody, is kept as when it is not
    /// readable; else empty.
    QByteArray passwordHash(const QString &user) const;

    /// Whether there are accounts of that kind.
    bool hashesPasswords() const;

    /// Whether whoever reaches the server gets in. Without an account nobody does.
    bool admitsEveryone() const
    {
        return authMode == AuthNone || (authMode == AuthPasswordPage && password.isEmpty());
    }

    /// Whether nothing is left open that clients of before rely on: the switches hold for every
    /// method, session numbers can't be guessed, no request keeps anything of the one before it.
    bool isStrict() const { return strict != 0 || faceMode == FaceStandard; }
};

/// One named settings profile and the file that it is stored in.
class Profile : public ProfileValues
{
public:
    static constexpr int maxRecentFiles = 4;
    static constexpr auto globalFile = "Global.conf";
    static constexpr auto fileSuffix = ".cnf"; ///< of all other profiles

    /// What the profile's file is like.
    enum class FileState {
        Missing, ///< the defaults are what is meant
        Fine,
        Damaged, ///< cut short, changed since it was written, or something else
        Unreadable, ///< it may not be opened
        TextUnreadable ///< its text file may not be opened; the profile's own file is fine
    };

    /// A profile of defaults without a file; default keys are those of `where`.
    explicit Profile(Directories where);

    /// The profile stored as `fileName` ("Global.conf", "work.cnf") in the folder of the profiles;
    /// see `load`.
    Profile(const Directories &where, const QString &fileName);

    /// Reads the profile's own file and the text file beside it. When the first can't be used all
    /// values become the defaults, `fileState` says why, and the result is false. A damaged text
    /// file is set aside, and `textSetAside` tells it.
    bool load();

    /// Writes the profile whole or not at all, readable by its owner alone, with a checksum in a
    /// file beside it, of its name + ".sum", and the text file. False when one can't be written;
    /// the file then keeps its content. A file that can't be used is first kept beside under its
    /// name + ".bad"; but nothing is written while the text file can't be read, as its values would
    /// be lost unseen.
    bool save();

    /// Changes values here and in the file, where all others stay as they are: another program of
    /// the same user may have changed those meanwhile. A file that can't be used is left alone.
    /// False when it can't be written.
    bool amend(const std::function<void(Profile &)> &change);

    FileState fileState() const { return m_fileState; }

    /// Which file it is about when the profile can't be used or saved.
    QString fileInTheWay() const;

    /// False while the values are defaults that nobody has chosen, as the file can't be used:
    /// to serve with them might open what was protected.
    bool isUsable() const;

    /// The text file that was damaged and is now called by its name + ".bad"; empty when there was
    /// none. The defaults apply to what it said.
    QString textSetAside() const { return m_textSetAside; }

    /// What the file names as the port when that is none; the default applies.
    std::optional<qint32> refusedPort() const { return m_refusedPort; }

    /// The file becomes that of `profileName` in the folder of the profiles.
    void setFileName(const QString &profileName);
    QString fileName() const { return m_fileName; }

    /// Deletes the profile's files; false when that fails.
    bool remove();

    /// A new profile of the same values and file name.
    std::unique_ptr<Profile> clone() const;

    /// Takes over all values and the file name of `other`, but none of what belongs to this run
    /// (`cleanExit`, `lastPage`, `useCount`) or to its file's state.
    void apply(const Profile *other);

    /// Whether both hold the same values; where they are stored does not count.
    bool equals(const Profile *other) const;

    void resetKeys();

    /// Moves `path` to the front of the recent files, or puts it there.
    void addRecentFile(const QString &path);

    /// Whether everyone could change what lies in `path`, and that is the home folder or holds the
    /// folder of the profiles.
    bool opensHome(const QString &path) const;

    bool usesTls() const { return sslMode == Qt::Checked; }
    bool showsFolders() const { return showFolders == Qt::Checked; }
    bool showsThumbnails() const { return showImages == Qt::Checked; }
    bool allowsDelete() const { return enableDelete == Qt::Checked; }
    bool allowsUpload() const { return enableUpload == Qt::Checked; }
    bool usesDns() const { return dnsEnabled == Qt::Checked; }

    const Directories &directories() const { return m_directories; }

    bool cleanExit = true; ///< the last run ended in order (global profile only)
    qint32 lastPage = 0; ///< page last shown by the editor; not stored
    qint32 useCount = 0; ///< servers that run with this profile; not stored

private:
    Q_DISABLE_COPY(Profile)

    FileState read();
    void readTextFile();

    Directories m_directories;
    QString m_fileName;
    FileState m_fileState = FileState::Missing;
    std::optional<qint32> m_refusedPort;
    QString m_textSetAside;
};

/// Whether what is stored as a password is its hash: argon2id, in the text form of RFC 9106's
/// reference program.
inline bool isPasswordHash(const QString &stored)
{
    return stored.startsWith(QLatin1String("$argon2id$"));
}

/// The two parts of an account. A password may hold colons itself.
inline QString accountName(const QString &account)
{
    return account.section(QLatin1Char(':'), 0, 0);
}
inline QString accountPassword(const QString &account)
{
    return account.section(QLatin1Char(':'), 1);
}

constexpr int httpPort = 80; ///< the ports that a URL need not name
constexpr int httpsPort = 443;

/// Whether a server can be told to listen on this port: 1 to 65535.
constexpr bool isPort(int number)
{
    return number >= 1 && number <= 65535;
}

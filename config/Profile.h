#pragma once

#include <QFileInfo>
#include <QList>
#include <QString>
#include <QStringList>

/// How a server asks its clients who they are. The values stand in profile files.
enum AuthMode { AuthNone = 0, AuthPasswordPage = 1, AuthBasic = 2 };

/// What a profile says: every value that an editor changes and `Profile::equals` compares.
/// The check states hold what a check box holds: 0 unchecked, 2 checked.
struct ProfileValues
{
    QStringList users; ///< HTTP Basic accounts, each "name:password"
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
    QString password; ///< of the login page
    QString dnsUser;
    QString dnsPassword;
    QString privateKeyFile;
    QString publicKeyFile; ///< the certificate
    QString keyPassword;
};

/// One named settings profile and the file that it is stored in.
/// Element 0 of `confList` is the global profile, from which new ones are cloned;
/// the list owns its profiles for the whole run.
class Profile : public ProfileValues
{
public:
    static constexpr int maxRecentFiles = 4;

    static QString ConfigDir; ///< where profiles are stored, with a trailing "/"
    static QString ResDir; ///< installed resources, with a trailing "/"
    static QByteArray IconDir; ///< installed icons, with a trailing "/"
    static QString LangPath; ///< login page and help of the user's language, with a trailing "/"
    static QList<Profile *> confList;
    static bool FirstRun; ///< a profile could not be loaded
    static bool RootMode; ///< the program was started to use ports up to 1024

    /// A profile of defaults without a file.
    Profile();

    /// The profile stored in `ConfigDir` + `fileName` ("Global.conf", "work.cnf");
    /// defaults, and `FirstRun` set, when it can't be loaded.
    explicit Profile(const QString &fileName);

    ~Profile() = default;

    /// Reads the profile's own file, see below.
    bool load();

    /// Makes `path` the profile's file and reads it. When it is missing, cut short or of another
    /// format, all values become the defaults, `FirstRun` is set and the result is false.
    bool load(const QString &path);

    /// Writes the profile whole or not at all, readable by its owner alone. False when it can't be
    /// written; the file then keeps its content. A file that did not load is first kept beside
    /// under its name + ".bad".
    bool save();

    /// The file becomes `ConfigDir` + `profileName` + ".cnf".
    void setFileName(const QString &profileName);
    QString fileName() const { return m_fileName; }

    /// Deletes the profile's file; false when that fails.
    bool remove();

    /// A new profile of the same values and file name. The caller owns it.
    Profile *clone() const;

    /// Takes over all values and the file name of `other`, but none of what belongs to this run
    /// (`cleanExit`, `lastPage`, `useCount`).
    void apply(const Profile *other);

    /// Whether both hold the same values; where they are stored does not count.
    bool equals(const Profile *other) const;

    void initValues();
    void resetKeys();

    /// Moves `path` to the front of the recent files, or puts it there.
    void addRecentFile(const QString &path);

    bool usesTls() const { return sslMode == Qt::Checked; }
    bool showsFolders() const { return showFolders == Qt::Checked; }
    bool showsThumbnails() const { return showImages == Qt::Checked; }
    bool allowsDelete() const { return enableDelete == Qt::Checked; }
    bool allowsUpload() const { return enableUpload == Qt::Checked; }
    bool usesDns() const { return dnsEnabled == Qt::Checked; }

    /// The first profile of `confList`; `loadProfiles` must have run.
    static Profile *global();

    /// The first profile of `confList` with this name, or null.
    static Profile *find(const QString &profileName);

    bool cleanExit = true; ///< the last run ended in order (global profile only)
    qint32 lastPage = 0; ///< page last shown by the editor; not stored
    qint32 useCount = 0; ///< servers that run with this profile; not stored
    QFileInfo info; ///< copied with the values, neither compared nor stored

private:
    Q_DISABLE_COPY(Profile)

    bool keepDamagedFile();

    QString m_fileName;
    bool damaged = false; ///< the file exists but did not load
};

/// Makes names on disk UTF-8 whatever the locale says. Call before the application object is made.
void useUtf8Names();

/// Where the process finds its files. Call once, before any profile is made.
/// The resources come from the folder in the environment variable QUILLON_RESDIR when it is set,
/// else from "/opt/quillon/". Makes `ConfigDir`; false when that fails.
bool setUpDirectories();

/// How the previous run ended, as `loadProfiles` found it.
enum class LastRun { EndedInOrder, Aborted };

/// Fills `Profile::confList`: the global profile first, then every other file of
/// `ConfigDir`, sorted by name, and marks the global profile as running.
LastRun loadProfiles();

/// The orderly end: marks the global profile as closed and saves it, then frees all profiles.
/// False when the global profile can't be written.
bool closeProfiles();

#pragma once

#include <QByteArray>
#include <QString>

/// Keeps programs of one user from seeing a profile's files half written: a lock on their
/// folder while the object lives. Where the file system knows no locks there is none.
class ProfileLock
{
public:
    /// Waits until no other program has it; they hold it for one file.
    explicit ProfileLock(const QString &profileFile);
    ~ProfileLock();

private:
    Q_DISABLE_COPY_MOVE(ProfileLock)

    int folder;
};

/// Nothing but "there is no such file" makes a file missing: what can't be reached may exist.
bool isMissing(const QString &path);

/// Writes a file whole or not at all, readable by its owner alone.
bool writePrivate(const QString &path, const QByteArray &content);

/// Whether `content` is what was written to a profile file, by the checksums beside it. One without
/// them comes from elsewhere, or is older than they are: it fits.
bool fitsItsSum(const QString &profileFile, const QByteArray &content);

/// Writes a profile file whole or not at all, and its checksum, readable by its owner alone. False
/// when it can't be written; the file then keeps its content.
bool writeWithSum(const QString &profileFile, const QByteArray &content);

/// Deletes a profile file and its checksums; false when one stays.
bool removeWithSum(const QString &profileFile);

/// Renames a file of a profile to its name + ".bad" in the place of one that is there, and deletes
/// its checksums; false when it stays.
bool setAside(const QString &profileFile);

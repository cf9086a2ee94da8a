#pragma once

#include <QString>

/// Where a process finds its files. Made once in `main` and handed down; every folder ends with a
/// slash.
struct Directories
{
    QString profiles; ///< of the user: "~/.quillon/"
    QString state; ///< of the user: what the program notes for them
    QString cache; ///< of the user: what can be made anew
    QString resources; ///< installed; the key and certificate of a new profile lie here
    QString icons;
    QString language; ///< login page and help in the user's language

    /// The folders of this process. The resources lie in the folder that the environment variable
    /// QUILLON_RESDIR names, else in "/opt/quillon/"; the state and the cache are "quillon/" where
    /// those of programs are, by the XDG base directories. Nothing is made on disk.
    static Directories ofProcess();

    /// Makes the folder of the profiles; false when that fails.
    bool makeProfileFolder() const;
};

/// The folder in `languages`, which ends with a slash, of the user's `locale` ("de_AT"): that of
/// its exact name, else the first one of the same language, else "C".
QString languageFolder(const QString &languages, const QString &locale);

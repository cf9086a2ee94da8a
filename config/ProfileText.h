#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

enum FaceMode : int;
struct ProfileValues;

/// How the text file of a profile was found.
enum class TextState {
    Fine, ///< or there is none, and the defaults are what is meant
    Damaged, ///< not lines of "key = value", or a value that its key doesn't know
    Unreadable ///< also when such a file was to protect something: the defaults may allow more
};

/// The text file beside a profile file: "work.cnf.ini" of "work.cnf". It holds the values that the
/// profile file has no place for, one "key = value" a line in UTF-8, and is meant to be edited by
/// hand too: comments (# or ;) and keys of other versions stay where they are. Some keys end in the
/// name of an account, percent-encoded where it isn't letters, digits or "-._~@+".
QString textFileOf(const QString &profileFile);

/// Takes over the values that the text file names; those that it does not name become the
/// defaults, all of them when it can't be used.
TextState readText(const QString &textFile, ProfileValues *values);

/// Gives the profile file `to` a text file like that of `from`, or none when that has none. False
/// when that fails.
bool copyText(const QString &from, const QString &to);

/// Writes the values into the text file, readable by its owner alone, where they differ from what
/// it says. False when it can't be written; the file then keeps its content.
bool writeText(const QString &textFile, const ProfileValues &values);

/// The mode of this name, as the text file and the console call it.
std::optional<FaceMode> faceModeOf(const QByteArray &name);

/// A host name or address as browsers send it: in lower case, without brackets, with other letters
/// encoded (RFC 3492). None when it is neither.
std::optional<QString> hostNameOf(const QByteArray &text);

/// A path that all paths outside begin with, as it stands in URLs ("/share"), without a "/" at its
/// end; empty for the root. None when it is no path.
std::optional<QByteArray> pathPrefixOf(const QByteArray &text);

/// Whether both have the same values of those that stand in text files.
bool equalText(const ProfileValues &one, const ProfileValues &other);

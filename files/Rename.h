#pragma once

#include "files/Place.h"

/// Gives an entry another place, where nothing may stand; in one step where the file system can
/// refuse to replace. Else by a second name, and where there are no links after a look: another
/// program could take the name between the two. 0, or the number of the error: `EXDEV`
/// for another file system, `EEXIST` for a name that is taken or being received, `EBUSY` for an
/// entry that is being received or holds a hidden folder.
int renameNew(const Place &from, const Place &to);

/// Gives a file the place of another, in one step. 0, or the number of the error: also `EXDEV` for
/// another file system, `EISDIR` or `ENOTDIR` when one of them is a folder, `EBUSY` when one is
/// being received or the other is written to.
int renameOver(const Place &from, const Place &to);

/// Gives an entry the place of whatever stands there, in one step where the file system knows how;
/// else that is called as `asideName` has it for a moment, and a failure gives it its name back.
/// What stood there, when it wasn't replaced by the system itself, is at `old` then: hidden, and to
/// be removed. 0, or the number of the error as above, and everything is as it was.
int renameReplacing(const Place &from, const Place &to, Place &old);

/// Gives an entry another name in its folder that the file system takes for the same, in two steps.
/// 0, or the number of the error.
int respell(const Place &from, const Place &to);

/// `renameNew` by the names alone, for who holds them reserved.
int renameNew(int fromFolder, const QByteArray &from, int toFolder, const QByteArray &to);

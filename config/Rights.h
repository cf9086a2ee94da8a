#pragma once

#include <QByteArray>
#include <QFlags>

#include <optional>

/// What somebody may do with the files and folders of a share.
enum class Right : unsigned {
    See = 1, ///< what there is, and all that listings tell of it
    Read = 2, ///< the content of files
    Add = 4, ///< files and folders of names that are free
    Change = 8, ///< what stands there: its content, its properties, what has its name
    Delete = 16
};
Q_DECLARE_FLAGS(Rights, Right)
Q_DECLARE_OPERATORS_FOR_FLAGS(Rights)

/// After which the share is not what it was.
constexpr Rights changingRights = Right::Add | Right::Change | Right::Delete;

/// Names with commas between: "see, read"; "none" and "all" as such.
QByteArray rightsText(Rights rights);

/// Out of such a text. None when there is another word in it.
std::optional<Rights> rightsNamed(const QByteArray &text);

/// What a profile's text file says of an account.
struct AccountRights
{
    std::optional<Rights> rights = {}; ///< none: those of everyone
    QByteArray home = {}; ///< path below the share, with a "/" in front; empty: the whole share
};

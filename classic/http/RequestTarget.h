#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Paths that stand for something else than the content of the share.

constexpr auto iconUrl = "/_i/"; ///< and the name of an icon
constexpr auto previewUrl = "/_t/"; ///< and the path on disk of a picture of the share

/// The target of a request line, or of a Destination header (RFC 9112, section 3.2).
struct RequestTarget
{
    enum class Form {
        Path, ///< begins with "/"
        Empty, ///< names no path at all
        Asterisk, ///< "*"
        Malformed ///< anything else
    };

    Form form = Form::Malformed;
    QString path; ///< decoded, UTF-8
    QByteArray query; ///< as sent, without the question mark
};

/// Takes an encoded target apart. "//x" is a path, never a host; of an absolute URL
/// ("http://host/path") only the path and the query count.
RequestTarget parseTarget(const QByteArray &encoded);

/// Whether ".." segments of `path` lead out of the folder that the path is relative to.
/// Leading and doubled slashes don't matter.
bool climbsOut(const QString &path);

/// What follows `start` in a path that begins with it.
std::optional<QString> restBehind(const char *start, const QString &path);

#pragma once

#include <QByteArray>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standard {

/// The target of a request, or a Destination, taken apart (RFC 9112, section 3.2).
struct Target
{
    QByteArray authority; ///< of an absolute URL; empty for a mere path
    QByteArray rawPath; ///< as it was sent, begins with "/"
    QByteArray path; ///< decoded bytes, begins with "/"; never holds a NUL
    QByteArray query; ///< as it was sent, without its "?"
};

/// A path or an http(s) URL. None when it is neither or badly encoded.
std::optional<Target> parseTarget(const QByteArray &text);

/// Decodes "%41". None when a "%" is followed by something else than two hex digits, and for "%00".
std::optional<QByteArray> percentDecoded(const QByteArray &text);

/// The value of a field in a query or a form (application/x-www-form-urlencoded). None when it
/// isn't there, empty when it is badly encoded.
std::optional<QByteArray> formValue(const QByteArray &form, const QByteArray &name);

/// The same of all fields of that name.
std::vector<QByteArray> formValues(const QByteArray &form, const QByteArray &name);

/// A path of bytes as it stands in a URL; harmless in XML and in header lines.
QByteArray encodedPath(const QByteArray &path);

/// Appends the same, for who makes many.
void addEncoded(std::string &to, std::string_view path);

/// How a visitor calls what is shared.
struct UrlSpace
{
    QByteArray prefix; ///< begins all paths; encoded, without a "/" at its end
    QByteArray home; ///< the path that is the visitor's root, see `Access`
};

/// The path of a URL for a path in the share; without a host, which a proxy may know better.
QByteArray urlPath(const UrlSpace &space, const QByteArray &path, bool isFolder);

} // namespace standard

#pragma once

#include <QByteArray>
#include <QByteArrayMatcher>

/// Finds where one part of a multipart body ends (RFC 2046, section 5.1), however the body is
/// cut into pieces. It holds back no more than a delimiter's length.
class MultipartCutter
{
public:
    /// `delimiter` is CR LF, two hyphens and the boundary.
    explicit MultipartCutter(const QByteArray &delimiter);

    /// Takes the next piece of the body, gives the bytes that surely belong to the part.
    /// After the delimiter was found, nothing more does.
    QByteArray feed(const QByteArray &piece);

    bool isFound() const { return found; }

private:
    QByteArrayMatcher matcher;
    QByteArray tail; ///< may be the start of the delimiter
    bool found = false;
};

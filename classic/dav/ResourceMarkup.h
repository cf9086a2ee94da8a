#pragma once

#include <QByteArray>
#include <QtGlobal>

/// What PROPFIND reports of one file or folder.
struct Resource
{
    QByteArray href;
    qint64 size = 0; ///< bytes; of a folder, what its entry takes
    qint64 modified = 0; ///< seconds since the epoch
    bool folder = false;
};

/// Writes PROPFIND's document under one namespace prefix.
class ResourceMarkup
{
public:
    /// `prefix` is a letter and ":", or empty.
    explicit ResourceMarkup(const QByteArray &prefix = {});

    const QByteArray &rootStart() const { return root; }
    const QByteArray &rootEnd() const { return endOfRoot; }

    /// Appends the element of one resource.
    void append(QByteArray &text, const Resource &resource) const;

private:
    // What stands between the values of an element.
    QByteArray root, toHref, toDate, fileToSize, folderToSize, toEnd, endOfRoot;
};

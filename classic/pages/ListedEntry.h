#pragma once

#include "classic/pages/Entry.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

#include <memory>

class QImage;
struct CellFrame;

/// One entry of a listing as it is now, and how browsers and the desktop client see it.
/// A value: its copies share nothing but the finished preview, whose file goes with the last of
/// them.
class ListedEntry
{
public:
    /// Pictures of fewer bytes than this are shown themselves.
    static constexpr qint64 smallPictureBytes = 20000;

    /// Where preview files are kept, in the home folder.
    static QString previewFolder();

    explicit ListedEntry(const QFileInfo &entry);

    /// For callers that have looked at the entry already.
    ListedEntry(const QFileInfo &entry, const EntryFacts &entryFacts);

    /// Nothing is left to do for this element: it is no large picture, or its preview was made
    /// or given up.
    bool isReady() const { return ready; }

    /// Makes the preview of a large picture, or gives it up; the element is ready then. Takes its
    /// time, so never call it in the event loop.
    void init();

    /// The element becomes ready, with the preview of `other`, a ready element of the same file.
    void takePreview(const ListedEntry &other);

    /// Gives the preview up: the element shows the plain picture icon from now on.
    void scaleFailed();

    /// Lets the preview go.
    void deleteTmpFile() { tmp.reset(); }

    /// The file of the finished preview; empty when there is none.
    QString tempFileName() const;

    /// Appends the table cell.
    void toHTML(QByteArray *page, const CellFrame &frame) const;

    /// Appends the picture reference for the desktop client: nothing, the picture's own URL path,
    /// "/_t/" and the path of the file whose preview is ready, or "/_t/" alone while it is being
    /// made. `urlFolder` is the URL path of the listed folder, UTF-8 and ending in "/".
    void toMC(QByteArray *out, const QByteArray &urlFolder) const;

    /// The icon of a lower-case extension; null when there is none.
    static QByteArray getIcon(const QString &extension);

private:
    class TempFile;

    bool savePreview(const QImage &picture);
    void addPicture(QByteArray *page, const QByteArray &urlFolder, const QByteArray &name) const;

    std::shared_ptr<const TempFile> tmp; ///< the preview; null until it is made, or given up
    QFileInfo info;
    EntryFacts facts;
    bool ready = true;
    QByteArray icon; ///< null: no picture; empty: the picture itself; else a file of the icons
    QString ext; ///< lower case; the whole name when there is no extension
};

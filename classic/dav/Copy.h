#pragma once

#include "classic/dav/Dav.h"
#include "classic/dav/FileCopy.h"

#include <QSet>

#include <vector>

/// COPY: one file, or the files of a folder tree, in as many turns of the event loop as it takes;
/// the answer follows the last one.
class Copy : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "CP";

    explicit Copy(Request *request);

    using Dav::reply;
    void reply(const QFileInfo &shared) override;

private:
    struct Pending
    {
        QFileInfo source;
        QString destination; ///< the folder to copy into
    };

    void copySingle(const QFileInfo &source, QFileInfo destination);
    void copyTree(const QFileInfo &source, const QFileInfo &destination);
    void copyNext();
    void copyDir(const QFileInfo &folder, const QString &destination);
    void copyFile(const QFileInfo &file, const QString &destination);
    void addResponse(const QFileInfo &file, const QByteArray &status);

    QByteArray body; ///< the document being built
    bool overwrite = true;
    std::vector<Pending> pending; ///< of a folder tree, the next one last
    QSet<QString> visited; ///< folders, so that links can't lead in circles
    FileCopy copier;
};

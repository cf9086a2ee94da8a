#pragma once

#include "classic/http/FormFields.h"
#include "files/DiskJob.h"
#include "files/Share.h"
#include "files/TreeRemoval.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// Removes what was ticked on the page of a folder: files, and folders with all they hold. When
/// one name climbs out of the folder, nothing is touched.
class SelectionRemoval final : public DiskJob
{
public:
    /// `path` is that of the folder in the share; `pathOnDisk` is only told.
    SelectionRemoval(std::shared_ptr<const Share> sharedFolder, QString path, QString pathOnDisk,
                     const QByteArray &postedForm);

    bool run(const Budget &until) override;

    /// Whether a name climbed out.
    bool isForbidden() const { return forbidden; }

    /// What browsers are told: the folders that stay, as far as there is room, and how many
    /// entries were removed. Of a folder only those below it count.
    QByteArray message() const;

    /// Which of them went whole, as far as their names are kept; paths.
    const std::vector<QByteArray> &gone() const { return removedPaths; }

private:
    bool check(const Budget &until);
    void begin();
    void removeFile(const QByteArray &path);
    void removeFolder(const QByteArray &path, const QString &name);
    void endFolder();
    void noteGone(const QByteArray &path);

    const std::shared_ptr<const Share> share;
    const QString folder;
    const QString shownFolder;
    FormFields unchecked;
    FormFields fields; ///< the current one is being removed
    bool checked = false;
    bool forbidden = false;
    std::unique_ptr<TreeRemoval> tree; ///< under way
    QString treeName;
    QByteArray treePath;
    qint64 removed = 0;
    QByteArray failures;
    std::vector<QByteArray> removedPaths;
};

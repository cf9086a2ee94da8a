#pragma once

#include "files/DiskJob.h"

#include <QByteArray>

#include <memory>

class Share;

/// Makes a folder and those above it that are missing; when they may be many, on a thread.
class FolderMaking final : public DiskJob
{
public:
    FolderMaking(std::shared_ptr<const Share> where, QByteArray wanted);

    bool run(const Budget &until) override;

    /// As `Share::makeFolders`, once it has run.
    int error() const { return result; }

private:
    std::shared_ptr<const Share> share;
    QByteArray path;
    int result = 0;
};

#pragma once

#include "classic/dav/Dav.h"
#include "classic/dav/FileCopy.h"

/// MOVE: gives a file or folder another name. Nothing is ever replaced.
class Move : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "MV";

    explicit Move(Request *request);

    using Dav::reply;
    void reply(const QFileInfo &shared) override;

private:
    void moveAcross(const QString &source, const QString &destination);
    void finish(bool moved);

    FileCopy copier; ///< for a file that moves to another file system
};

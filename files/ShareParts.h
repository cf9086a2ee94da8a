#pragma once

#include "files/Share.h"

#include <QByteArray>
#include <QHash>

#include <memory>

/// The parts of a share that are in use, so that many requests of those who have the same folder
/// for their own take no more descriptors than one. Used from one thread.
class ShareParts
{
public:
    /// What `Share::partOf` gives: the one that is in use, unless another folder stands there now.
    std::shared_ptr<const Share> part(const std::shared_ptr<const Share> &whole,
                                      const QByteArray &path);

private:
    void forgetUnused();

    QHash<QByteArray, std::weak_ptr<const Share>> inUse; ///< by path
};

#pragma once

#include "files/Previews.h"
#include "files/Share.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

struct Service;

// The previews of the pictures of one share.

/// How far the preview of a picture is; a new one is queued. `facts` are what was found at `path`,
/// a path of `share`; `extension` is what its name ends in, in lower case. Without `previews`
/// (may be null) there is none.
Previews::State askForPreview(Previews *previews, const std::shared_ptr<const Share> &share,
                              const QByteArray &path, const EntryFacts &facts,
                              const QByteArray &extension, Urgency urgency);

/// Opens the finished preview of the picture at `pathOnDisk`. None when there is none, or the
/// picture is not one of this share.
std::optional<OpenFile> openPreview(const Service &service, const QString &pathOnDisk);

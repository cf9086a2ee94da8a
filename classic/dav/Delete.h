#pragma once

#include "classic/dav/Dav.h"

/// DELETE: removes a file, or a folder with all it holds, when the profile lets it.
class Delete : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "D";

    explicit Delete(Request *request);

    using Dav::reply;
    void reply(const QFileInfo &shared, Profile *profile) override;
};

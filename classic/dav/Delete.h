#pragma once

#include "classic/dav/Dav.h"

/// DELETE: removes a file, or a folder with all it holds, when the profile lets it. It goes on
/// to its end when the client is gone.
class Delete : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;

private:
    void remove(Place target, const char *success);
};

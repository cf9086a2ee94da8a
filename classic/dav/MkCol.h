#pragma once

#include "classic/dav/Dav.h"

/// MKCOL: makes a folder, and the folders above it that are missing. One that exists is fine.
class MkCol : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;
};

#pragma once

#include "classic/dav/Dav.h"

/// MOVE: gives a file or folder another name. Nothing is ever replaced.
class Move : public Dav
{
    Q_OBJECT
public:
    using Dav::Dav;

    void reply() override;

private:
    void moveAcross(Place from, Place to);
    void finish(bool moved);
};

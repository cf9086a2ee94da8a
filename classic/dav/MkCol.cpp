#include "classic/dav/MkCol.h"

#include "files/Share.h"

void MkCol::reply()
{
    const bool made = share() && share()->makeFolders(requestedPath()) == 0;
    answer(made ? Status::created : "500 MKPATH Failed");
}

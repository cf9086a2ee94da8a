#include "app/AllRows.h"

#include "classic/dav/Rows.h"
#include "classic/pages/Rows.h"

ResponderRows allRows()
{
    ResponderRows rows;
    for (const ResponderRows &room : { fileManagerRows(), davRows(), baseRows() })
        rows.insert(rows.end(), room.begin(), room.end());
    return rows;
}

#include "app/AllRows.h"

#include "dav/Rows.h"

ResponderRows allRows()
{
    ResponderRows rows;
    for (const ResponderRows &room : { davRows(), baseRows() })
        rows.insert(rows.end(), room.begin(), room.end());
    return rows;
}

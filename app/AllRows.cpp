#include "app/AllRows.h"

ResponderRows allRows()
{
    ResponderRows rows;
    for (const ResponderRows &room : { baseRows() })
        rows.insert(rows.end(), room.begin(), room.end());
    return rows;
}

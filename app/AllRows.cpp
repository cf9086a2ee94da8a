#include "app/AllRows.h"

#include "dav/Rows.h"
#include "filemanager/Rows.h"

ResponderRows allRows()
{
    ResponderRows rows;
    for (const ResponderRows &room : { fileManagerRows(), davRows(), baseRows() })
        rows.insert(rows.end(), room.begin(), room.end());
    return rows;
}

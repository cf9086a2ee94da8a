#include "classic/pages/Routes.h"

#include "classic/pages/BrowserPages.h"

Routes pageRoutes()
{
    return {
        { Request::Get, nullptr, makeResponder<BrowserPages> },
        { Request::Post, nullptr, makeResponder<BrowserPages> },
    };
}

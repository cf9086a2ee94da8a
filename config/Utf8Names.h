#pragma once

/// Makes names on disk UTF-8 whatever the locale says. Call before the application object is made.
void useUtf8Names();

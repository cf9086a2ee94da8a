#include "standard/http/Protection.h"

namespace standard {

namespace {

void append(Fields &fields, const Fields &more)
{
    fields.insert(fields.end(), more.begin(), more.end());
}

} // namespace

void addPageProtection(Fields &fields)
{
    static const Fields protection{
        { "X-Content-Type-Options", "nosniff" },
        { "Content-Security-Policy",
          "default-src 'none'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'" },
        { "Referrer-Policy", "no-referrer" },
        { "Cross-Origin-Opener-Policy", "same-origin" },
        { "Cross-Origin-Resource-Policy", "same-origin" },
    };
    append(fields, protection);
}

void addFileProtection(Fields &fields)
{
    static const Fields protection{ { "X-Content-Type-Options", "nosniff" },
                                    { "Content-Security-Policy", "sandbox" },
                                    { "Cross-Origin-Resource-Policy", "same-origin" } };
    append(fields, protection);
}

} // namespace standard

#include "standard/http/Protection.h"

#include <QCryptographicHash>

namespace standard {

namespace {

void append(Fields &fields, const Fields &more)
{
    fields.insert(fields.end(), more.begin(), more.end());
}

/// `sources` begin the policy, `formTargets` end it and may be followed by more of it.
void addProtection(Fields &fields, const QByteArray &sources, const QByteArray &formTargets,
                   const QByteArray &referrer)
{
    append(fields,
           { { "X-Content-Type-Options", "nosniff" },
             { "Content-Security-Policy",
               "default-src " + sources + "; base-uri 'none'; frame-ancestors 'none'; form-action "
                   + formTargets },
             { "Referrer-Policy", referrer },
             { "Cross-Origin-Opener-Policy", "same-origin" },
             { "Cross-Origin-Resource-Policy", "same-origin" } });
}

} // namespace

void addPageProtection(Fields &fields)
{
    addProtection(fields, "'none'", "'none'", "no-referrer");
}

void addFormProtection(Fields &fields, const QByteArray &style)
{
    QByteArray rest = "'self'";
    if (!style.isEmpty())
        rest += "; style-src 'sha256-"
            + QCryptographicHash::hash(style, QCryptographicHash::Sha256).toBase64() + '\'';
    // Without a referrer, forms would not say that they come from here.
    addProtection(fields, "'none'", rest, "same-origin");
}

void addAppProtection(Fields &fields, const QByteArray &nonce)
{
    // Documents are shown from memory: as files of somebody's they would have no viewer.
    addProtection(fields, "'self'; script-src 'nonce-" + nonce + "'; frame-src blob:", "'self'",
                  "same-origin");
}

void addFileProtection(Fields &fields)
{
    static const Fields protection{ { "X-Content-Type-Options", "nosniff" },
                                    { "Content-Security-Policy", "sandbox" },
                                    { "Cross-Origin-Resource-Policy", "same-origin" } };
    append(fields, protection);
}

} // namespace standard

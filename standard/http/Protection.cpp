#include "standard/http/Protection.h"

#include <QCryptographicHash>

namespace standard {

namespace {

void append(Fields &fields, const Fields &more)
{
    fields.insert(fields.end(), more.begin(), more.end());
}

void addProtection(Fields &fields, const QByteArray &policy, const QByteArray &referrer)
{
    append(fields,
           { { "X-Content-Type-Options", "nosniff" },
             { "Content-Security-Policy", policy + "; base-uri 'none'; frame-ancestors 'none'" },
             { "Referrer-Policy", referrer },
             { "Cross-Origin-Opener-Policy", "same-origin" },
             { "Cross-Origin-Resource-Policy", "same-origin" } });
}

} // namespace

void addPageProtection(Fields &fields)
{
    addProtection(fields, "default-src 'none'; form-action 'none'", "no-referrer");
}

void addFormProtection(Fields &fields, const QByteArray &style)
{
    QByteArray policy = "default-src 'none'; form-action 'self'";
    if (!style.isEmpty())
        policy += "; style-src 'sha256-"
            + QCryptographicHash::hash(style, QCryptographicHash::Sha256).toBase64() + '\'';
    // Without a referrer, forms would not say that they come from here.
    addProtection(fields, policy, "same-origin");
}

void addAppProtection(Fields &fields)
{
    // Documents are shown from memory: as files of somebody's they would have no viewer.
    addProtection(fields, "default-src 'self'; frame-src blob:; form-action 'self'", "same-origin");
}

void addFileProtection(Fields &fields)
{
    static const Fields protection{ { "X-Content-Type-Options", "nosniff" },
                                    { "Content-Security-Policy", "sandbox" },
                                    { "Cross-Origin-Resource-Policy", "same-origin" } };
    append(fields, protection);
}

} // namespace standard

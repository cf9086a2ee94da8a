#pragma once

#include <QByteArray>

#include <vector>

/// The cookies of a Cookie header (RFC 6265, section 4.2.1).
class Cookies
{
public:
    struct Cookie
    {
        QByteArray name;
        QByteArray value;
    };

    /// Reads a header's value; the cookies of before are gone.
    void set(const QByteArray &value);

    /// The first one of this name, or null.
    const Cookie *find(const char *name) const;

private:
    void add(const QByteArray &piece);

    std::vector<Cookie> all;
};

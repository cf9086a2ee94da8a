#include "classic/http/FormFields.h"

#include <QUrl>
#include <QUrlQuery>

#include <utility>

namespace {

/// The toolkit mends what is not encoded as it should be.
QString decoded(const QByteArray &encoded)
{
    QUrl url;
    url.setQuery(QLatin1String("v=") + QString::fromUtf8(encoded.constData(), encoded.size()));
    return QUrlQuery(url).queryItemValue(QStringLiteral("v"), QUrl::FullyDecoded);
}

} // namespace

FormFields::FormFields(QByteArray encoded)
    : query(std::move(encoded))
{
}

bool FormFields::next()
{
    start = end + 1;
    if (start > query.size() || query.isEmpty())
        return false;
    const auto separator = query.indexOf('&', start);
    end = int(separator < 0 ? query.size() : separator);
    return true;
}

bool FormFields::is(const char *name) const
{
    const auto size = int(qstrlen(name));
    const bool plain = end - start >= size
        && qstrncmp(query.constData() + start, name, uint(size)) == 0
        && (start + size == end || query.at(start + size) == '=');
    if (plain)
        return true;
    // A name may be encoded too; few are.
    const auto encoded = query.indexOf('%', start);
    const auto equals = query.indexOf('=', start);
    const bool inName = encoded >= 0 && encoded < end && (equals < 0 || encoded < equals);
    return inName && this->name() == QLatin1String(name);
}

QString FormFields::name() const
{
    const QByteArray item = query.mid(start, end - start);
    return decoded(item.left(int(item.indexOf('='))));
}

QString FormFields::value() const
{
    const QByteArray item = query.mid(start, end - start);
    const auto equals = item.indexOf('=');
    return equals < 0 ? QString() : decoded(item.mid(int(equals) + 1));
}

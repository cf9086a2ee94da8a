#include "classic/http/Request.h"

#include "classic/http/FormFields.h"
#include "server/CrossSite.h"

#include <QUrl>

namespace {

constexpr auto formType = "application/x-www";

bool hasDestination(int method)
{
    return method == Request::Copy || method == Request::Move;
}

} // namespace

void Request::setForm(QByteArray body)
{
    query = body.replace('+', "%20");
}

QUrlQuery Request::fields() const
{
    QUrl url;
    url.setQuery(QString::fromUtf8(query.constData(), query.size()));
    return QUrlQuery(url);
}

QString Request::field(const char *name) const
{
    FormFields fields(query);
    while (fields.next()) {
        if (fields.is(name))
            return fields.value();
    }
    return {};
}

bool Request::climbs() const
{
    if (climbsOut(path))
        return true;
    if (const auto icon = restBehind(iconUrl, path); icon && climbsOut(*icon))
        return true;
    return hasDestination(methodCode) && climbsOut(destinationTarget().path);
}

bool Request::isMalformed() const
{
    const auto malformed = [](RequestTarget::Form form) {
        return form == RequestTarget::Form::Malformed || form == RequestTarget::Form::Asterisk;
    };

    if (methodCode == Options && targetForm == RequestTarget::Form::Asterisk)
        return false;
    if (targetForm == RequestTarget::Form::Empty && !onlyReads())
        return true;
    if (malformed(targetForm))
        return true;
    return hasDestination(methodCode) && malformed(destinationTarget().form);
}

bool Request::isLogin() const
{
    return field(actionField) == QLatin1String(loginAction);
}

const Cookies::Cookie *Request::sessionCookie() const
{
    return cookies.find(sessionCookieName);
}

bool Request::isForm() const
{
    return methodCode == Post && contentType.startsWith(formType);
}

bool Request::isMultipart() const
{
    return methodCode == Post && contentType.toLower().startsWith("multipart/form-data");
}

bool Request::onlyReads() const
{
    return methodCode == Get || methodCode == Head || methodCode == Options
        || methodCode == PropFind;
}

bool Request::isCrossSite(bool encrypted) const
{
    return ::isCrossSite(fetchSite, origin, host, encrypted);
}

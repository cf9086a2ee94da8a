#include "standard/http/MultiStatus.h"

namespace standard {

QByteArray rootStart(const char *name)
{
    return QByteArray(R"(<?xml version="1.0" encoding="utf-8"?><D:)") + name
        + R"( xmlns:D="DAV:">)";
}

QByteArray rootEnd(const char *name)
{
    return QByteArray("</D:") + name + '>';
}

QByteArray href(const QByteArray &url)
{
    return "<D:href>" + url + "</D:href>";
}

QByteArray propStat(const QByteArray &properties, Status status)
{
    return "<D:propstat><D:prop>" + properties + "</D:prop>" + statusElement(status)
        + "</D:propstat>";
}

QByteArray statusElement(Status status)
{
    return "<D:status>HTTP/1.1 " + statusText(status) + "</D:status>";
}

QByteArray errorBody(const char *condition, const QByteArray &content)
{
    const QByteArray name(condition);
    return rootStart("error") + "<D:" + name + '>' + content + "</D:" + name + '>'
        + rootEnd("error");
}

} // namespace standard

#include "classic/dav/ResourceMarkup.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace {

// English in every locale (RFC 9110, section 5.6.7).
constexpr std::array<const char *, 7> dayNames{ "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
constexpr std::array<const char *, 12> monthNames{ "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };

/// Local time under the label "GMT": clients of this server compare it with what they saw before.
void appendDate(QByteArray &to, qint64 seconds)
{
    const auto time = std::time_t(seconds);
    std::tm local = {};
    ::localtime_r(&time, &local);
    std::array<char, 64> text;
    const int size = std::snprintf(text.data(), text.size(), "%s, %d %s %04d %02d:%02d:%02d GMT",
                                   dayNames.at(size_t(local.tm_wday)), local.tm_mday,
                                   monthNames.at(size_t(local.tm_mon)), local.tm_year + 1900,
                                   local.tm_hour, local.tm_min, local.tm_sec);
    to.append(text.data(), size);
}

} // namespace

ResourceMarkup::ResourceMarkup(const QByteArray &prefix)
{
    const auto prefixed = [&prefix](QByteArray text) { return text.replace('~', prefix); };
    const QByteArray declared = prefix.isEmpty() ? QByteArray() : ':' + prefix.left(1);

    root = prefixed("<~multistatus xmlns") + declared + "=\"DAV:\">";
    toHref = prefixed("<~response><~href>");
    toDate = prefixed("</~href><~propstat><~prop><~getlastmodified>");
    fileToSize = prefixed("</~getlastmodified><~getcontentlength>");
    folderToSize = prefixed("</~getlastmodified><~resourcetype><~collection/></~resourcetype>"
                            "<~getcontentlength>");
    toEnd = prefixed("</~getcontentlength></~prop><~status>HTTP/1.1 200 OK</~status>"
                     "</~propstat></~response>");
    endOfRoot = prefixed("</~multistatus>");
}

void ResourceMarkup::append(QByteArray &text, const Resource &resource) const
{
    text += toHref;
    text += resource.href;
    text += toDate;
    appendDate(text, resource.modified);
    text += resource.folder ? folderToSize : fileToSize;
    text += QByteArray::number(resource.size);
    text += toEnd;
}

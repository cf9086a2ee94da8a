#include "standard/dav/LiveProperties.h"

#include "files/FileDescriptor.h"
#include "server/HttpDate.h"
#include "standard/http/Conditions.h"
#include "standard/http/ContentType.h"
#include "standard/http/MultiStatus.h"

#include <QDateTime>

#include <algorithm>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

namespace standard {

namespace {

/// Seconds since 1970-01-01 UTC; where the file system doesn't know, of the last change.
qint64 created(const DavResource &resource)
{
    struct statx status = {};
    const int flags = resource.subject.isLinkFree ? AT_SYMLINK_NOFOLLOW : 0;
    const bool isKnown =
        ::statx(AT_FDCWD, resource.subject.systemPath.constData(), flags, STATX_BTIME, &status) == 0
        && (status.stx_mask & STATX_BTIME) != 0;
    return isKnown ? qint64(status.stx_btime.tv_sec) : resource.facts.seconds;
}

bool appendCreationDate(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    const QDateTime time = QDateTime::fromSecsSinceEpoch(created(resource), Qt::UTC);
    addBytes(to, time.toString(Qt::ISODate).toLatin1());
    return true;
}

bool appendDisplayName(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    addBytes(to, xmlText(QString::fromStdString(resource.name)));
    return true;
}

bool appendContentLength(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    if (resource.facts.file)
        to += std::to_string(resource.facts.size);
    return resource.facts.file;
}

QByteArray typeInside(const DavResource &resource)
{
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const FileDescriptor file(::open(resource.subject.systemPath.constData(), flags));
    return contentType(QByteArray::fromStdString(resource.name), file.get());
}

/// What GET says (RFC 4918, section 15.5). A listing would read the begin of each text for its
/// charset, and tells the type alone.
bool appendContentType(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    if (resource.facts.file)
        addBytes(to,
                 resource.isAlone ? typeInside(resource)
                                  : contentType(QByteArray::fromStdString(resource.name)));
    return resource.facts.file;
}

bool appendTag(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    if (resource.facts.file)
        addBytes(to, entityTag(resource.facts));
    return resource.facts.file;
}

bool appendLastModified(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    addBytes(to, httpDate(resource.facts.seconds));
    return true;
}

/// Present for files as well: some clients take what has none for nothing.
bool appendResourceType(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    if (resource.facts.folder)
        to += "<D:collection/>";
    return true;
}

bool appendLocks(std::string &to, const DavResource &resource, const ReplyFacts &common)
{
    addBytes(to, common.locks.at(resource.path));
    return true;
}

bool appendSupportedLocks(std::string &to, const DavResource &, const ReplyFacts &)
{
    for (const char *scope : { "<D:exclusive/>", "<D:shared/>" }) {
        to += "<D:lockentry><D:lockscope>";
        to += scope;
        to += "</D:lockscope><D:locktype><D:write/></D:locktype></D:lockentry>";
    }
    return true;
}

bool appendBytes(std::string &to, const DavResource &resource, qint64 bytes)
{
    const bool isKnown = resource.facts.folder && bytes >= 0;
    if (isKnown)
        to += std::to_string(bytes);
    return isKnown;
}

bool appendFreeBytes(std::string &to, const DavResource &resource, const ReplyFacts &common)
{
    return appendBytes(to, resource, common.freeBytes);
}

bool appendUsedBytes(std::string &to, const DavResource &resource, const ReplyFacts &common)
{
    return appendBytes(to, resource, common.usedBytes);
}

bool appendExecutable(std::string &to, const DavResource &resource, const ReplyFacts &)
{
    if (resource.facts.file)
        to += (resource.facts.mode & S_IXUSR) != 0 ? 'T' : 'F';
    return resource.facts.file;
}

} // namespace

const std::vector<LiveProperty> &liveProperties()
{
    static const std::vector<LiveProperty> properties{
        { davSpace, "resourcetype", true, false, appendResourceType },
        { davSpace, "getcontentlength", true, false, appendContentLength },
        { davSpace, "getlastmodified", true, false, appendLastModified },
        { davSpace, "getetag", true, false, appendTag },
        { davSpace, "getcontenttype", true, false, appendContentType },
        { davSpace, "displayname", true, false, appendDisplayName },
        { davSpace, "creationdate", true, true, appendCreationDate },
        { davSpace, "supportedlock", true, false, appendSupportedLocks },
        { davSpace, "lockdiscovery", true, true, appendLocks },
        { apacheSpace, executableName, true, false, appendExecutable },
        { davSpace, "quota-available-bytes", false, false, appendFreeBytes },
        { davSpace, "quota-used-bytes", false, false, appendUsedBytes },
    };
    return properties;
}

const LiveProperty *findLiveProperty(const XmlName &name)
{
    const std::vector<LiveProperty> &all = liveProperties();
    const auto found = std::find_if(all.begin(), all.end(), [&name](const LiveProperty &each) {
        return name.local == QLatin1String(each.name) && name.space == QLatin1String(each.space);
    });
    return found == all.end() ? nullptr : &*found;
}

XmlName nameOf(const LiveProperty &property)
{
    return { QString::fromLatin1(property.space), QString::fromLatin1(property.name) };
}

} // namespace standard

#pragma once

#include "files/Entry.h"
#include "standard/dav/LockDiscovery.h"
#include "standard/dav/PropertyStore.h"
#include "standard/dav/XmlName.h"

#include <QByteArray>

#include <string>
#include <vector>

namespace standard {

/// A file or folder whose properties are told.
struct DavResource
{
    QByteArray path; ///< relative to the share's root
    std::string href; ///< see `urlPath`
    std::string name; ///< that people know it by, in UTF-8
    EntryFacts facts;
    PropertySubject subject;
    bool isAlone = false; ///< nothing but it is told, so there is time to look into it
};

/// What the properties of all resources of a reply have in common.
struct ReplyFacts
{
    LockDiscovery locks;
    qint64 freeBytes = -1; ///< on the disk; -1 when that is not known
    qint64 usedBytes = -1;
};

/// A property that is made from what a resource is (RFC 4918, section 15; RFC 4331).
struct LiveProperty
{
    const char *space;
    const char *name;
    bool inAll; ///< told to who asks for all; the others cost a look of their own
    bool needsPath; ///< or the subject, not the facts alone
    /// Appends the value; false when the resource has no such property.
    bool (*append)(std::string &to, const DavResource &resource, const ReplyFacts &common);
};

/// All there are.
const std::vector<LiveProperty> &liveProperties();

/// Null when there is none of that name.
const LiveProperty *findLiveProperty(const XmlName &name);

XmlName nameOf(const LiveProperty &property);

/// Of the same property.
constexpr auto apacheSpace = "http://apache.org/dav/props/";
constexpr auto executableName = "executable";

} // namespace standard

#pragma once

#include "standard/dav/LiveProperties.h"
#include "standard/dav/RequestBodies.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace standard {

/// Tells of resources what a PROPFIND asks for. Made once for a request; for any thread.
class PropertyReport
{
public:
    PropertyReport(const PropFindBody &asked, ReplyFacts common,
                   std::shared_ptr<const PropertyStore> store);

    /// Whether it needs the path and subject of a resource; else name, href and facts are enough.
    bool needsPaths() const { return pathsNeeded; }

    /// Appends the "response" element of a resource.
    void append(std::string &to, const DavResource &resource) const;

private:
    struct Asked
    {
        const LiveProperty *property;
        // Made beforehand, as they are written for each resource.
        std::string start;
        std::string end;
        std::string empty;
    };

    void ask(const LiveProperty &property);
    void askOther(const XmlName &name);
    void appendLive(std::string &to, std::string &missing, const DavResource &resource) const;
    void appendDead(std::string &to, std::string &missing, const DavResource &resource) const;

    const bool namesOnly;
    bool allDead;
    bool pathsNeeded;
    ReplyFacts facts;
    std::shared_ptr<const PropertyStore> dead;
    std::vector<Asked> live;
    std::map<XmlName, std::string> others; ///< asked for by name, with their empty elements
    std::string allOthers; ///< these elements: nearly every file has no such property
};

} // namespace standard

#include "standard/dav/PropertyReport.h"

#include "standard/http/MultiStatus.h"

#include <algorithm>
#include <set>
#include <utility>

namespace standard {

PropertyReport::PropertyReport(const PropFindBody &asked, ReplyFacts common,
                               std::shared_ptr<const PropertyStore> store)
    : namesOnly(asked.kind == PropFindBody::Kind::Names)
    , allDead(asked.kind != PropFindBody::Kind::Named)
    , pathsNeeded(allDead)
    , facts(std::move(common))
    , dead(std::move(store))
{
    const std::set<XmlName> names(asked.names.begin(), asked.names.end());
    for (const LiveProperty &property : liveProperties()) {
        if ((allDead && property.inAll) || names.count(nameOf(property)) > 0)
            ask(property);
    }
    for (const XmlName &name : names) {
        if (!findLiveProperty(name))
            askOther(name);
    }
    pathsNeeded = allDead || !others.empty()
        || std::any_of(live.begin(), live.end(),
                       [](const Asked &each) { return each.property->needsPath; });
}

void PropertyReport::askOther(const XmlName &name)
{
    const std::string element = emptyElement(name).toStdString();
    others.emplace(name, element);
    allOthers += element;
}

void PropertyReport::ask(const LiveProperty &property)
{
    const std::string empty = emptyElement(nameOf(property)).toStdString();
    const std::string start = empty.substr(0, empty.size() - 2) + '>';
    const bool isPrefixed = empty.find("<D:") == 0;
    const std::string end = std::string(isPrefixed ? "</D:" : "</") + property.name + '>';
    live.push_back({ &property, start, end, empty });
}

void PropertyReport::append(std::string &to, const DavResource &resource) const
{
    to += "<D:response><D:href>";
    to += resource.href;
    to += "</D:href><D:propstat><D:prop>";
    std::string missing;
    appendLive(to, missing, resource);
    if (allDead || !others.empty())
        appendDead(to, missing, resource);
    to += "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat>";
    if (!missing.empty())
        addBytes(to, propStat(QByteArray::fromStdString(missing), Status::NotFound));
    to += "</D:response>";
}

/// The elements of those that the resource doesn't have are appended to `missing`.
void PropertyReport::appendLive(std::string &to, std::string &missing,
                                const DavResource &resource) const
{
    for (const Asked &each : live) {
        const auto before = to.size();
        to += each.start;
        const bool has = each.property->append(to, resource, facts);
        if (!has || namesOnly)
            to.resize(before);
        else
            to += each.end;
        if (!has && !allDead)
            missing += each.empty;
        else if (has && namesOnly)
            to += each.empty;
    }
}

void PropertyReport::appendDead(std::string &to, std::string &missing,
                                const DavResource &resource) const
{
    std::set<XmlName> found;
    // What can't be understood is not told, only kept.
    const DeadProperties kept = dead->read(resource.subject).value_or(DeadProperties());
    for (const DeadProperty &each : kept) {
        const bool isAsked = others.count(each.name) > 0;
        if (namesOnly)
            addBytes(to, emptyElement(each.name));
        else if (allDead || isAsked)
            addBytes(to, each.xml);
        if (isAsked)
            found.insert(each.name);
    }
    if (found.empty()) {
        missing += allOthers;
        return;
    }
    for (const auto &[name, element] : others) {
        if (found.count(name) == 0)
            missing += element;
    }
}

} // namespace standard

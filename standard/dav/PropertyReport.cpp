#include "standard/dav/PropertyReport.h"

#include "standard/dav/MultiStatus.h"

#include <algorithm>
#include <utility>

namespace standard {

namespace {

bool isAsked(const std::vector<XmlName> &names, const XmlName &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

PropertyReport::PropertyReport(const PropFindBody &asked, ReplyFacts common,
                               std::shared_ptr<const PropertyStore> store)
    : namesOnly(asked.kind == PropFindBody::Kind::Names)
    , allDead(asked.kind != PropFindBody::Kind::Named)
    , facts(std::move(common))
    , dead(std::move(store))
{
    for (const LiveProperty &property : liveProperties()) {
        if ((allDead && property.inAll) || isAsked(asked.names, nameOf(property)))
            ask(property);
    }
    for (const XmlName &name : asked.names) {
        if (!findLiveProperty(name) && !isAsked(others, name))
            others.push_back(name);
    }
}

void PropertyReport::ask(const LiveProperty &property)
{
    const QByteArray empty = emptyElement(nameOf(property));
    const QByteArray start = empty.chopped(2) + '>';
    const bool isPrefixed = empty.startsWith("<D:");
    const QByteArray end = QByteArray(isPrefixed ? "</D:" : "</") + property.name + '>';
    live.push_back({ &property, start, end, empty });
}

void PropertyReport::append(QByteArray &to, const DavResource &resource) const
{
    to += "<D:response><D:href>";
    to += resource.href;
    to += "</D:href><D:propstat><D:prop>";
    QByteArray missing = appendLive(to, resource);
    if (allDead || !others.empty())
        missing += appendDead(to, resource);
    to += "</D:prop><D:status>HTTP/1.1 200 OK</D:status></D:propstat>";
    if (!missing.isEmpty())
        to += propStat(missing, Status::NotFound);
    to += "</D:response>";
}

/// The elements of those that the resource doesn't have.
QByteArray PropertyReport::appendLive(QByteArray &to, const DavResource &resource) const
{
    QByteArray missing;
    for (const Asked &each : live) {
        const auto before = to.size();
        to += each.start;
        const bool has = each.property->append(to, resource, facts);
        if (!has || namesOnly)
            to.truncate(before);
        else
            to += each.end;
        if (!has)
            missing += each.empty;
        else if (namesOnly)
            to += each.empty;
    }
    return allDead ? QByteArray() : missing;
}

QByteArray PropertyReport::appendDead(QByteArray &to, const DavResource &resource) const
{
    const DeadProperties kept = dead->read(resource.subject);
    QByteArray missing;
    for (const DeadProperty &each : kept) {
        if (namesOnly)
            to += emptyElement(each.name);
        else if (allDead || isAsked(others, each.name))
            to += each.xml;
    }
    for (const XmlName &name : others) {
        const auto isIt = [&name](const DeadProperty &each) { return each.name == name; };
        if (std::none_of(kept.begin(), kept.end(), isIt))
            missing += emptyElement(name);
    }
    return missing;
}

} // namespace standard

#include "standard/dav/PropPatch.h"

#include "files/Share.h"
#include "standard/dav/DavState.h"
#include "standard/dav/Limits.h"
#include "standard/dav/LiveProperties.h"
#include "standard/dav/MultiStatus.h"

#include <algorithm>
#include <cerrno>
#include <map>

#include <fcntl.h>

namespace standard {

namespace {

/// Makes the change to what is kept.
void changeKept(DeadProperties &kept, const PropertyChange &change)
{
    const auto found = std::find_if(kept.begin(), kept.end(), [&change](const DeadProperty &each) {
        return each.name == change.name;
    });
    const DeadProperty property{ change.name, change.value.xml };
    if (change.isRemoval && found != kept.end())
        kept.erase(found);
    else if (!change.isRemoval && found != kept.end())
        *found = property;
    else if (!change.isRemoval)
        kept.push_back(property);
}

/// What a PROPPATCH would make of a resource.
struct Outcome
{
    bool isFile = false; ///< a regular one
    std::vector<Status> statuses; ///< of each change
    FileChanges file;
    DeadProperties kept;

    bool isGood() const
    {
        return std::all_of(statuses.begin(), statuses.end(),
                           [](Status each) { return each == Status::Ok; });
    }

    void add(const PropertyChange &wanted)
    {
        switch (takeSetting(wanted, isFile, file)) {
        case Setting::Taken:
            return statuses.push_back(Status::Ok);
        case Setting::Bad:
            return statuses.push_back(Status::Conflict);
        case Setting::Protected:
            return statuses.push_back(Status::Forbidden);
        case Setting::Kept:
            break;
        }
        const bool isProtected = findLiveProperty(wanted.name);
        statuses.push_back(isProtected ? Status::Forbidden : Status::Ok);
        if (!isProtected)
            changeKept(kept, wanted);
    }

    /// Nothing is done because of those that can't be (RFC 4918, section 11.4).
    void failRest()
    {
        for (Status &each : statuses) {
            if (each == Status::Ok)
                each = Status::FailedDependency;
        }
    }

    void failAll(Status status) { std::fill(statuses.begin(), statuses.end(), status); }
};

bool isSameProperties(const DeadProperties &a, const DeadProperties &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const DeadProperty &x, const DeadProperty &y) {
                          return x.name == y.name && x.xml == y.xml;
                      });
}

/// Does it, or makes it a failure.
void apply(Outcome &outcome, int descriptor, const PropertySubject &subject, PropertyStore &store)
{
    const DeadProperties before = store.read(subject);
    const bool changesKept = !isSameProperties(before, outcome.kept);
    if (changesKept) {
        const DiskError error = store.write(subject, outcome.kept);
        if (error != DiskError::None)
            return outcome.failAll(statusOf(error));
    }
    if (const int error = changeFile(outcome.file, descriptor); error != 0) {
        if (changesKept)
            store.write(subject, before);
        outcome.failAll(statusOf(error));
    }
}

} // namespace

void PropPatch::start()
{
    const EntryFacts found = facts();
    if (!found.file && !found.folder)
        return exchange.refuse(Status::NotFound);
    if (!mayUpload() || !meetsConditions(found) || !exchange.mayChange({ { exchange.path() } }))
        return;
    exchange.readBody(maxPropPatchBody);
}

void PropPatch::bodyReady(const QByteArray &body)
{
    const auto changes = parsePropPatch(body);
    if (!changes)
        return exchange.refuse(Status::BadRequest);
    const FileDescriptor file = share()->open(exchange.path(), O_RDONLY | O_CLOEXEC);
    if (!file.isOpen())
        return exchange.refuse(statusOf(errno));

    const PropertySubject subject{ systemPathOf(file.get()), exchange.path() };
    PropertyStore &store = *DavState::of(exchange.service()).properties();
    const EntryFacts found = openFacts(file.get());
    Outcome outcome;
    outcome.isFile = found.file;
    outcome.kept = store.read(subject);
    for (const PropertyChange &each : *changes)
        outcome.add(each);
    if (outcome.isGood())
        apply(outcome, file.get(), subject, store);
    else
        outcome.failRest();
    answer(*changes, outcome.statuses, found.folder);
}

void PropPatch::answer(const Changes &changes, const std::vector<Status> &outcomes, bool isFolder)
{
    std::map<Status, QByteArray> named;
    for (std::size_t i = 0; i < changes.size(); ++i)
        named[outcomes[i]] += emptyElement(changes[i].name);
    QByteArray text = rootStart("multistatus") + "<D:response>"
        + href(exchange.urlPath(exchange.path(), isFolder));
    for (const auto &[status, names] : named)
        text += propStat(names, status);
    text += "</D:response>" + rootEnd("multistatus");
    exchange.reply(Status::MultiStatus, { { "Content-Type", xmlType } }, text);
}

} // namespace standard

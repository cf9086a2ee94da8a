#include "standard/dav/PropPatchJob.h"

#include "files/Entry.h"
#include "files/Share.h"
#include "standard/dav/LiveProperties.h"
#include "standard/dav/PropertyStore.h"
#include "standard/dav/SettableProperties.h"
#include "standard/http/MultiStatus.h"
#include "standard/http/Resource.h"
#include "standard/http/Uri.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>

namespace standard {

namespace {

constexpr int maxBodyInLoop = 16 * 1024; ///< bytes; to read more takes longer than a moment

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
void apply(Outcome &outcome, const DeadProperties &before, int descriptor,
           const PropertySubject &subject, PropertyStore &store)
{
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

QByteArray multiStatus(const QByteArray &url, const std::vector<PropertyChange> &changes,
                       const std::vector<Status> &statuses)
{
    std::map<Status, QByteArray> named;
    for (std::size_t i = 0; i < changes.size(); ++i)
        named[statuses[i]] += emptyElement(changes[i].name);
    QByteArray text = rootStart("multistatus") + "<D:response>" + href(url);
    for (const auto &[status, names] : named)
        text += propStat(names, status);
    return text + "</D:response>" + rootEnd("multistatus");
}

} // namespace

PropPatchJob::PropPatchJob(Subject changed, QByteArray request)
    : subject(std::move(changed))
    , body(std::move(request))
{
}

bool PropPatchJob::run(const Budget &until)
{
    if (!until.mayBlock() && body.size() > maxBodyInLoop)
        return false;
    const Parsed<PropPatchBody> parsed = PropPatchBody::parse(body);
    if (const auto *status = std::get_if<Status>(&parsed)) {
        result = *status;
        return true;
    }
    return change(std::get<PropPatchBody>(parsed), until.mayBlock());
}

/// False when others are at work on properties, and it may not wait for them.
bool PropPatchJob::change(const PropPatchBody &asked, bool mayWait)
{
    std::unique_lock<std::mutex> turn(subject.store->writers(), std::defer_lock);
    if (mayWait)
        turn.lock();
    else if (!turn.try_lock())
        return false;
    const FileDescriptor file = subject.share->open(subject.path, O_RDONLY | O_CLOEXEC);
    if (!file.isOpen()) {
        result = statusOf(errno);
        return true;
    }
    const PropertySubject place{ systemPathOf(file.get()), subject.path };
    const std::optional<DeadProperties> before = subject.store->read(place);
    const EntryFacts found = openFacts(file.get());
    Outcome outcome;
    outcome.isFile = found.file;
    outcome.kept = before.value_or(DeadProperties());
    for (const PropertyChange &each : asked.changes)
        outcome.add(each);
    if (!asked.fits)
        outcome.failAll(Status::InsufficientStorage);
    else if (!outcome.isGood())
        outcome.failRest();
    else if (!before)
        outcome.failAll(Status::Forbidden); // what can't be read must not be lost
    else
        apply(outcome, *before, file.get(), place, *subject.store);
    text = multiStatus(urlPath(subject.urls, subject.path, found.folder), asked.changes,
                       outcome.statuses);
    return true;
}

} // namespace standard

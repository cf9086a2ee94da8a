#include "files/PreviewQueue.h"

#include <algorithm>
#include <iterator>

void PreviewQueue::ask(PreviewJob job, Urgency urgency)
{
    const auto known = places.constFind(job.id);
    if (known != places.constEnd()) {
        urgency = std::max(urgency, known->first);
        jobs.erase(*known);
    }
    const Place place(urgency, ++turn);
    places.insert(job.id, place);
    jobs.emplace(place, std::move(job));
    if (jobs.size() > m_capacity)
        take(jobs.begin());
}

std::optional<PreviewJob> PreviewQueue::takeNext()
{
    if (jobs.empty())
        return {};
    return take(std::prev(jobs.end()));
}

PreviewJob PreviewQueue::take(Jobs::iterator position)
{
    PreviewJob job = std::move(position->second);
    jobs.erase(position);
    places.remove(job.id);
    return job;
}

void PreviewQueue::clear()
{
    jobs.clear();
    places.clear();
}

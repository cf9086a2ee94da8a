#pragma once

#include "server/Activity.h"

#include <QHash>

#include <algorithm>
#include <utility>
#include <vector>

/// Tells files that move, however slowly, from those that stand still. Looks once a second.
class TransferPace
{
public:
    void look(const std::vector<Visit> &visits)
    {
        before = std::exchange(last, {});
        for (const Visit &visit : visits) {
            if (visit.transfer)
                last.insert(visit.number, visit.transfer->done);
        }
    }

    /// Whether one has moved since the look before the last one, or began after that.
    bool moves(const std::vector<Visit> &visits) const
    {
        return std::any_of(visits.begin(), visits.end(), [this](const Visit &visit) {
            return visit.transfer && visit.transfer->done != before.value(visit.number, -1);
        });
    }

private:
    using Counts = QHash<quint64, qint64>; ///< bytes, by the numbers of connections

    Counts before;
    Counts last;
};

#include "desktop/window/TransferWatch.h"

#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 1s;
constexpr auto endInterval = 250ms; ///< while files move, so that the end of the last is seen soon

} // namespace

TransferWatch::TransferWatch(ServerRows *watched)
    : rows(watched)
{
    connect(&timer, &QTimer::timeout, this, &TransferWatch::look);
    connect(&ends, &QTimer::timeout, this, &TransferWatch::tell);
    connect(rows, &ServerRows::runningChanged, this, &TransferWatch::follow);
}

void TransferWatch::look()
{
    for (ServerRow *row : rows->all())
        row->lookAtTransfers();
    // Not by what is told in between, which may be the moment between two files.
    if (!tell())
        ends.stop();
    else if (!ends.isActive())
        ends.start(endInterval);
}

bool TransferWatch::tell()
{
    const QList<ServerRow *> &all = rows->all();
    const bool moves = std::any_of(all.begin(), all.end(),
                                   [](const ServerRow *row) { return row->isTransferring(); });
    Q_EMIT looked(moves);
    return moves;
}

void TransferWatch::follow(bool running)
{
    if (!running) {
        timer.stop();
        ends.stop();
        Q_EMIT looked(false);
    } else if (!timer.isActive()) {
        timer.start(lookInterval);
    }
}

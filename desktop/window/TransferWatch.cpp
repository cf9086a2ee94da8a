#include "desktop/window/TransferWatch.h"

#include "desktop/window/ServerRow.h"
#include "desktop/window/ServerRows.h"

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 1s;

} // namespace

TransferWatch::TransferWatch(ServerRows *watched)
    : rows(watched)
{
    connect(&timer, &QTimer::timeout, this, &TransferWatch::look);
    connect(rows, &ServerRows::runningChanged, this, &TransferWatch::follow);
}

void TransferWatch::look()
{
    bool moves = false;
    for (ServerRow *row : rows->all()) {
        row->lookAtTransfers();
        moves = moves || row->isTransferring();
    }
    Q_EMIT looked(moves);
}

void TransferWatch::follow(bool running)
{
    if (!running) {
        timer.stop();
        Q_EMIT looked(false);
    } else if (!timer.isActive()) {
        timer.start(lookInterval);
    }
}

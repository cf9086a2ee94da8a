#pragma once

#include "standard/dav/LockTable.h"
#include "standard/dav/RequestBodies.h"
#include "standard/http/Resource.h"

#include <memory>
#include <optional>

class UploadFile;

namespace standard {

/// LOCK: takes a lock, and makes an empty file where there is nothing; or begins the time of one
/// anew.
class LockMethod final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
    void bodyReady(const QByteArray &body) override;
    void ended() override;

private:
    std::optional<bool> isDeep() const;
    void refresh();
    Lock wantedLock() const;
    Lock leastLock() const;
    bool mayTake(const Lock &wanted);
    void take(const Lock &wanted);
    void makeFile();
    void fileMade();
    void answer(const Lock &lock, Status status, Fields fields = {});

    QByteArray made; ///< the token of a lock that nobody was told yet
    std::shared_ptr<UploadFile> file; ///< while it is being made
};

/// UNLOCK: ends a lock.
class UnlockMethod final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

} // namespace standard

#pragma once

#include "files/FileDescriptor.h"
#include "standard/http/Resource.h"

#include <QtGlobal>

#include <memory>
#include <optional>

class UploadFile;

namespace standard {

/// PUT: makes a file, or puts another in the place of one, in one step and only once the body is
/// whole.
class Put final : public ResourceHandler
{
public:
    explicit Put(Exchange &current);
    ~Put() override;

    void start() override;
    void bodySaved(BodyEnd end) override;
    void ended() override { discard(); }

private:
    bool isAllowed(const EntryFacts &found);
    bool hasRoom(const Place &folder) const;
    std::vector<Change> changes() const;
    void receive();
    void refuse(DiskError error);
    void keep();
    void takeName(const std::shared_ptr<UploadFile> &received,
                  const std::shared_ptr<FileDescriptor> &kept);
    void answer(DiskError error, const FileDescriptor &kept);
    void discard();
    std::optional<qint64> wantedTime() const;

    std::shared_ptr<UploadFile> upload; ///< while the body is received
    bool replaces = false;
    bool tookTime = false; ///< that the request brought
};

} // namespace standard

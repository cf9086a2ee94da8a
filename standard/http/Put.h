#pragma once

#include "standard/http/FileTaker.h"

#include <vector>

namespace standard {

/// PUT: makes a file, or puts another in the place of one, in one step and only once the body is
/// whole.
class Put final : public FileTaker
{
public:
    using FileTaker::FileTaker;

    void start() override;
    void bodySaved(BodyEnd end) override;

private:
    bool isAllowed(const EntryFacts &found);
    bool hasRoom(const Place &folder) const;
    std::vector<Change> changes() const;
    bool mayBeKept(const UploadFile &received) override;
    void receive();
    void refuse(DiskError error);
    void keepWithTime();
    void taken(const UploadFile &received) override;

    QByteArray path; ///< where the file is to stand
    bool tookTime = false; ///< that the request brought
};

} // namespace standard

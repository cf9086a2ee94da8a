#pragma once

#include "files/FileDescriptor.h"
#include "standard/http/Resource.h"

#include <QtGlobal>

#include <optional>

namespace standard {

/// Where a PATCH writes.
struct UpdateRange
{
    qint64 first = 0; ///< offset
    std::optional<qint64> count = {}; ///< bytes; none when the body tells it
};

/// What an X-Update-Range means for a file of `size` bytes: "bytes=a-b", "bytes=a-", "bytes=-n" or
/// "append". None when it is none of these or begins past the end.
std::optional<UpdateRange> updateRange(const QByteArray &value, qint64 size);

/// PATCH: writes into a file in place. What has arrived when the body breaks off stays, so that a
/// program can resume.
class Patch final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    static constexpr auto contentType = "application/x-sabredav-partialupdate";

    void start() override;
    void bodySaved(BodyEnd end) override;
    void ended() override { file.reset(); }

private:
    bool isAllowed(const EntryFacts &found);
    void receive(const UpdateRange &range);
    bool write(const char *data, qint64 size);
    void keep();
    void answer(DiskError error, const FileDescriptor &kept);

    FileDescriptor file; ///< while the body is received
    EntryFacts before; ///< of the same, when it was opened
    qint64 position = 0;
    DiskError failure = DiskError::None;
};

} // namespace standard

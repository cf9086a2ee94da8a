#pragma once

#include "files/DiskError.h"
#include "files/DiskJob.h"
#include "files/Share.h"
#include "files/UploadFile.h"

#include <utility>

/// Copies one regular file, content and permissions, into a place that it takes when it is whole.
/// Not beyond the size that the file has at first: it may be growing. Broken off or failed, it
/// leaves nothing.
class FileCopy final : public DiskJob
{
public:
    enum class Existing {
        Kept, ///< nothing may stand there
        Replaced ///< a regular file stands there and keeps its permissions
    };

    FileCopy(OpenFile from, Place to, Existing existing);

    void setSync(UploadFile::Sync policy) { upload.setSync(policy); }

    /// The time of the content and the extended attributes are to be copied too.
    void keepProperties() { withProperties = true; }

    bool run(const Budget &until) override;

    /// How it ended.
    DiskError error() const { return result; }

    /// The file it copies, and what that was when the copy began.
    const OpenFile &copied() const { return source; }

    /// The copy, open and locked: no sweep takes a hidden one away while somebody has this.
    FileDescriptor takeMade() { return std::move(made); }

    /// Removes the copy that was made, unless something else has its name by now.
    void undo();

private:
    enum class State { Idle, Copying, Keeping, Ended };

    bool fail(DiskError error);
    bool begin();
    bool copyOn();
    bool end();
    qint64 copyRange();
    qint64 copyBytes();

    OpenFile source;
    UploadFile upload;
    Place target; ///< until the upload has it
    Existing whenThere;
    qint64 offset = 0;
    bool withProperties = false;
    bool byRange = true; ///< within the kernel, as long as it can
    FileDescriptor made; ///< the copy
    State state = State::Idle;
    DiskError result = DiskError::None;
};

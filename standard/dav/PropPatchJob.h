#pragma once

#include "files/DiskJob.h"
#include "standard/dav/RequestBodies.h"
#include "standard/http/Uri.h"

#include <QByteArray>

#include <memory>

class Share;

namespace standard {

class PropertyStore;

/// Does what the body of a PROPPATCH asks for, all of it or nothing. Cancelled before it has begun
/// it does nothing.
class PropPatchJob final : public DiskJob
{
public:
    struct Subject
    {
        std::shared_ptr<const Share> share;
        QByteArray path; ///< relative to the share's root
        std::shared_ptr<PropertyStore> store;
        UrlSpace urls;
    };

    PropPatchJob(Subject changed, QByteArray request);

    bool run(const Budget &until) override;

    // When it is finished:

    /// `MultiStatus`, or what to refuse the request with.
    Status status() const { return result; }

    /// The body of the reply; empty when the request is refused.
    const QByteArray &answer() const { return text; }

private:
    bool change(const PropPatchBody &asked, bool mayWait);

    const Subject subject;
    const QByteArray body;
    Status result = Status::MultiStatus;
    QByteArray text;
};

} // namespace standard

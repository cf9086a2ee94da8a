#pragma once

#include "classic/dav/Dav.h"

#include <memory>

class UploadFile;

/// PUT: stores the request body as a new file. Only one client program may replace files; the
/// others have to DELETE first.
class Put : public Dav
{
    Q_OBJECT
public:
    static constexpr auto name = "PT";

    explicit Put(Request *request);
    ~Put() override;

    using Dav::reply;
    void reply(const QFileInfo &shared, Profile *profile) override;

    /// The body is whole, or will never be, see `SaveResult`.
    void reply(int result) override;

private:
    bool isProbe() const;
    bool isLengthUnknown() const;
    void receive(const QString &path, bool exists);

    std::unique_ptr<UploadFile> upload; ///< while a body is being received
};

#pragma once

#include "classic/dav/Dav.h"

#include <memory>

class UploadFile;
enum class DiskError;

/// PUT: stores the request body as a new file. Only one client program may replace files; the
/// others have to DELETE first.
class Put : public Dav
{
    Q_OBJECT
public:
    explicit Put(Exchange &current);
    ~Put() override;

    void reply() override;
    void uploadEnded(SaveResult result) override;

private:
    bool isFrom(const char *program) const;
    bool isProbe() const;
    void receive(const QByteArray &path, bool exists);
    void keep(const std::shared_ptr<UploadFile> &received);

    std::shared_ptr<UploadFile> upload; ///< while a body is being received
};

#include "server/Uploads.h"

#include "config/Profile.h"

UploadFile::Sync syncOf(const Profile &profile)
{
    switch (profile.syncPolicy) {
    case SyncNothing:
        return UploadFile::Sync::None;
    case SyncFileAndFolder:
        return UploadFile::Sync::FileAndFolder;
    default:
        return UploadFile::Sync::File;
    }
}

std::shared_ptr<UploadFile> newUpload(const Profile &profile)
{
    auto upload = std::make_shared<UploadFile>();
    upload->setSync(syncOf(profile));
    return upload;
}

#pragma once

#include "files/UploadFile.h"

#include <memory>

class Profile;

/// What the profile wants to have reached the disk before success is said.
UploadFile::Sync syncOf(const Profile &profile);

/// A file to receive, kept as the profile wants it.
std::shared_ptr<UploadFile> newUpload(const Profile &profile);

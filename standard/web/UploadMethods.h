#pragma once

#include "standard/web/UploadReceiver.h"

#include <vector>

namespace standard {

/// POST to a folder: begins an upload, perhaps with its first bytes, or all of them.
class UploadCreation final : public UploadReceiver
{
public:
    using UploadReceiver::UploadReceiver;

    void start() override;
    void ended() override;

private:
    struct Wanted
    {
        QByteArray path; ///< of the share
        PartialRecord record;
    };

    std::optional<Wanted> readWanted(const QByteArray &folder);
    std::vector<Change> changes() const override;
    bool mayBegin();
    void begin(const PartialRecord &record);
    void accept(Fields progress) override;

    QByteArray sentTo; ///< the folder as its sender calls it, a path of the share
    std::vector<QByteArray> missing; ///< folders that are made for it
    QByteArray location; ///< by which its sender goes on with it
    bool isMade = false; ///< and its sender knows where it is
};

/// PATCH: brings the next bytes.
class UploadAppend final : public UploadReceiver
{
public:
    using UploadReceiver::UploadReceiver;

    void start() override;

private:
    void accept(Fields progress) override;
};

/// HEAD: tells how much of an upload is here.
class UploadStatus final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

/// DELETE: gives an upload up.
class UploadRemoval final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

/// OPTIONS: what can be done here.
class UploadOptions final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
};

} // namespace standard

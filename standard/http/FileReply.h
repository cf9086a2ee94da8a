#pragma once

#include "files/OpenFiles.h"
#include "standard/http/Ranges.h"
#include "standard/http/Resource.h"

#include <memory>
#include <vector>

class FolderListing;

namespace standard {

/// GET and HEAD of what is shared: a file, the parts of it that are asked for, or a page that lists
/// a folder.
class FileReply final : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

    void start() override;
    void fileSent() override;

private:
    void sendFile(ServedFile opened);
    QByteArray type() const;
    Fields fileFields() const;
    const QByteArray &fileLines() const;
    void sendWhole();
    void sendPart(const ByteRange &part);
    void startParts(std::vector<ByteRange> wanted);
    void sendNextPart();
    QByteArray partHead(const ByteRange &part) const;
    QByteArray partsEnd() const;
    QByteArray fileName() const;
    void redirectToFolder();
    void listFolder();
    bool hasPad() const;
    bool takesForms() const;
    bool isDropBox() const;
    void sendPage(const FolderListing *listing);
    void sendListing(const FolderListing *listing);
    bool isArchived() const;

    ServedFile file;
    QByteArray boundary; ///< of several parts, like the next two
    QByteArray partType;
    std::vector<ByteRange> parts; ///< still to be sent, the next one last
};

} // namespace standard

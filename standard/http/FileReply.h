#pragma once

#include "files/OpenFiles.h"
#include "standard/http/Ranges.h"
#include "standard/http/Resource.h"

#include <memory>
#include <vector>

namespace standard {

/// GET and HEAD of a file, or of the parts of it that are asked for.
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

    ServedFile file;
    QByteArray boundary; ///< of several parts, like the next two
    QByteArray partType;
    std::vector<ByteRange> parts; ///< still to be sent, the next one last
};

} // namespace standard

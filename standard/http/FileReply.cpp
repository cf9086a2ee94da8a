#include "standard/http/FileReply.h"

#include "files/Share.h"

#include <utility>

namespace standard {

void FileReply::start()
{
    const Share *share = exchange.service().share.get();
    std::optional<OpenFile> file;
    if (share && !exchange.namesFolder())
        file = share->openFile(exchange.path());
    if (!file)
        return exchange.refuse(Status::NotFound);
    const qint64 size = file->facts.size;
    if (exchange.startBody(Status::Ok, {}, size))
        exchange.sendFile(std::move(file->descriptor), 0, size);
}

} // namespace standard

#include "standard/dav/DavState.h"

#include "server/Service.h"
#include "server/StatusSink.h"

#include <QCoreApplication>

namespace standard {

namespace {

void warn(StatusSink *sink)
{
    if (!sink)
        return;
    const auto tr = [](const char *text) { return QCoreApplication::translate("Dav", text); };
    sink->msg(tr("WebDAV properties"),
              tr("The file system can't keep the properties that programs give to files. They are "
                 "kept until the server ends."));
}

} // namespace

DavState &DavState::of(Service &service)
{
    if (!service.faceState)
        service.faceState = std::make_unique<DavState>(service);
    return static_cast<DavState &>(*service.faceState);
}

DavState::DavState(Service &service)
    : store(std::make_shared<PropertyStore>([sink = service.setup.sink] { warn(sink); }))
{
}

LockTable &DavState::locks()
{
    lockTable.expire();
    return lockTable;
}

} // namespace standard

#include "standard/dav/DavState.h"

#include "server/Service.h"
#include "server/StatusSink.h"

#include <QCoreApplication>

namespace standard {

DavState &DavState::of(Service &service)
{
    if (!service.faceState)
        service.faceState = std::make_unique<DavState>(service);
    return static_cast<DavState &>(*service.faceState);
}

DavState::DavState(const Service &service)
    : sink(service.setup.sink)
    , lockTable(std::make_shared<LockTable>())
    , store(std::make_shared<PropertyStore>())
{
}

void DavState::warn()
{
    if (!sink || !store->takeWarning())
        return;
    const auto tr = [](const char *text) { return QCoreApplication::translate("WebServer", text); };
    sink->msg(tr("WebDAV properties"),
              tr("The file system can't keep the properties that programs give to files. They are "
                 "kept until the server ends."));
}

LockTable &DavState::locks()
{
    lockTable->expire();
    return *lockTable;
}

} // namespace standard

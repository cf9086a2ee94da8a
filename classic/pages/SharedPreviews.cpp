#include "classic/pages/SharedPreviews.h"

#include "files/Path.h"
#include "server/Service.h"

#include <fcntl.h>

namespace {

PictureId idOf(const EntryFacts &facts)
{
    constexpr qint64 second = 1000000000;
    return { facts.device, facts.inode, facts.size, facts.seconds * second + facts.nanoseconds };
}

} // namespace

Previews::State askForPreview(Previews *previews, const std::shared_ptr<const Share> &share,
                              const QByteArray &path, const EntryFacts &facts,
                              const QByteArray &extension, Urgency urgency)
{
    if (!previews || !facts.file)
        return Previews::State::Failed;
    const auto open = [share, path] { return share->open(path, O_RDONLY); };
    return previews->want(idOf(facts), extension, open, urgency);
}

std::optional<OpenFile> openPreview(const Service &service, const QString &pathOnDisk)
{
    const QString root = service.shared.absoluteFilePath();
    const Previews *previews = service.setup.previews;
    if (!previews || !service.share || !pathOnDisk.startsWith(root))
        return {};
    // A mere neighbour whose name begins like the root's is no path below it.
    const QString path = pathOnDisk.mid(root.size());
    const QLatin1Char slash('/');
    if (!root.endsWith(slash) && !path.startsWith(slash))
        return {};
    const std::optional<OpenFile> picture = service.share->openFile(nativePath(path));
    if (!picture)
        return {};
    const QByteArray preview = nativePath(previews->fileOf(idOf(picture->facts)));
    OpenFile file{ FileDescriptor(::open(preview.constData(), O_RDONLY | O_CLOEXEC)), {} };
    if (!file.descriptor.isOpen())
        return {};
    file.facts = openFacts(file.descriptor.get());
    return file;
}

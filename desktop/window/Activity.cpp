#include "desktop/window/Activity.h"

#include "desktop/window/ActivityDialog.h"
#include "files/DiskStep.h"
#include "files/DiskWorker.h"

#include <QSettings>

namespace {

constexpr QLatin1String logKey("log/kept");

} // namespace

Activity::Activity(ServerRows *servers, std::shared_ptr<const ServerSetup> common)
    : rows(servers)
    , setup(std::move(common))
    , file(setup->directories.state + QLatin1String("log"))
{
}

/// What it shows goes with it.
Activity::~Activity()
{
    delete dialog;
}

bool Activity::keepsLog()
{
    return QSettings().value(logKey, true).toBool();
}

void Activity::keepLog(bool wanted)
{
    QSettings().setValue(logKey, wanted);
}

void Activity::note(const std::vector<Deed> &done)
{
    const QDateTime now = QDateTime::currentDateTime();
    deeds.add(done, now);
    if (!keepsLog())
        return;
    QByteArray lines;
    for (const Deed &deed : done) {
        if (isTelling(deed))
            lines += deedLine(deed, now);
    }
    // A file that can't be written is the user's to miss; the window has the last of it.
    const auto write = [log = file, lines] { log.append(lines); };
    if (!lines.isEmpty())
        setup->disk->runAside(std::make_shared<DiskStep>(write), nullptr, [] {});
}

void Activity::show(QWidget *parent)
{
    if (!dialog)
        dialog = new ActivityDialog(rows, setup->peers, &deeds, file.fileName(), parent);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

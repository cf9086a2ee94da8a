#include "desktop/window/Activity.h"

#include "desktop/window/ActivityDialog.h"
#include "files/DiskStep.h"
#include "files/DiskWorker.h"
#include "server/StatusSink.h"

#include <QSettings>

#include <utility>

namespace {

const QLatin1String logKey("log/kept");

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
    if (!unwritten.isEmpty())
        file.append(unwritten);
}

bool Activity::keepsLog()
{
    return QSettings().value(logKey, true).toBool();
}

void Activity::keepLog(bool wanted)
{
    QSettings().setValue(logKey, wanted);
}

void Activity::note(const std::vector<Deed> &done, bool isAll)
{
    const QDateTime now = QDateTime::currentDateTime();
    deeds.add(done, now);
    QByteArray lines;
    for (const Deed &deed : done)
        lines += deedLine(deed, now);
    if (!isAll) {
        deeds.addGap(now);
        lines += gapLine(now);
    }
    log(lines);
}

void Activity::addNote(const QString &text)
{
    const QDateTime now = QDateTime::currentDateTime();
    deeds.addNote(text, now);
    log(noteLine(text, now));
}

void Activity::log(const QByteArray &lines)
{
    if (!keepsLog())
        return;
    // A disk that hangs keeps no more waiting than the file would hold.
    lacksLines = lacksLines || unwritten.size() > LogFile::maxSize;
    if (unwritten.size() > LogFile::maxSize)
        return;
    if (std::exchange(lacksLines, false))
        unwritten += gapLine(QDateTime::currentDateTime());
    unwritten += lines;
    if (!isWriting)
        writeNext();
}

/// One after another, where the disk keeps nobody waiting.
void Activity::writeNext()
{
    isWriting = !unwritten.isEmpty();
    if (!isWriting)
        return;
    const auto isDone = std::make_shared<bool>(false);
    const auto write = [log = file, lines = std::exchange(unwritten, {}), isDone] {
        *isDone = log.append(lines);
    };
    setup->disk->runAside(std::make_shared<DiskStep>(write), this, [this, isDone] {
        if (!*isDone && !std::exchange(isFailing, true))
            setup->sink->msg(tr("The log of events can't be written"), file.fileName());
        writeNext();
    });
}

void Activity::show(QWidget *parent)
{
    if (!dialog)
        dialog = new ActivityDialog(rows, setup->peers, &deeds, file.fileName(), parent);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

#include "desktop/window/Notices.h"

#include "desktop/look/DesktopChoices.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/DeedLog.h"

#include <QWidget>

namespace {

bool isWholeUpload(const Deed &deed)
{
    return (deed.method == "PUT" || deed.method == "POST") && deed.isWhole
        && deed.status / 100 == 2;
}

} // namespace

Notices::Notices(QWidget *mainWindow)
    : window(mainWindow)
{
    // What is not seen at all is told where it was told before.
    connect(&notifier, &Notifier::notShown, this,
            [this](const QString &title, const QString &text) {
                if (title == limitTitle())
                    showBox(window, QMessageBox::Critical, text);
            });
}

bool Notices::isWanted() const
{
    return !window->isActiveWindow() && DesktopChoices::stored().notifies;
}

void Notices::tellVisitor(const QString &address)
{
    const bool isNew = seen.add(address.toLatin1(), RecentCounts::Clock::now()) == 1;
    if (isNew && isWanted())
        notifier.show(tr("New visitor"), address);
}

void Notices::tellUploads(const std::vector<Deed> &deeds)
{
    QStringList names;
    for (const Deed &deed : deeds) {
        if (isWholeUpload(deed))
            names += shownPath(deed.path);
    }
    if (!names.isEmpty() && isWanted())
        notifier.show(tr("Received"), names.join(QLatin1String(", ")));
}

bool Notices::tell(const QString &title, const QString &text)
{
    if (!isWanted())
        return false;
    notifier.show(title, text);
    return true;
}

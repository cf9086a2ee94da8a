#include "app/AllFaces.h"
#include "app/Process.h"
#include "app/WorkingFolder.h"
#include "config/Profiles.h"
#include "config/Utf8Names.h"
#include "desktop/look/Look.h"
#include "desktop/look/StartUp.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/MainWindow.h"
#include "files/Previews.h"
#include "server/Engine.h"

#include <QApplication>

int main(int argc, char **argv)
{
    useUtf8Names();
    prepareProcess();
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    Q_INIT_RESOURCE(icons);
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tessaroy"));
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLON_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("example.quillon.Quillon"));
    Look look;
    look.takeStored();
    const Directories directories = Directories::ofProcess();
    const bool hasFolder = directories.makeProfileFolder();
    const WorkingFolder workingFolder;
    installTranslators(&app, directories.language);

    Profiles profiles(directories);
    Previews::sweep(previewFolder());
    Previews previews(previewProgram(), previewFolder());
    EventHandler events;
    Engine engine(allFaces(), directories, &events, &previews);
    MainWindow window(&profiles, &look, &events, engine.setup(), argc > 1 ? argv[1] : nullptr);
    if (!hasFolder)
        events.msg(MainWindow::tr("Can't make the folder"), directories.profiles);
    if (!workingFolder.isEntered())
        events.msg(MainWindow::tr("Can't make the folder"), WorkingFolder::usualPlace());
    window.show();
    return QApplication::exec();
}

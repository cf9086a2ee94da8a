#include "app/AllFaces.h"
#include "app/Process.h"
#include "app/WorkingFolder.h"
#include "config/Profiles.h"
#include "config/Utf8Names.h"
#include "desktop/look/Look.h"
#include "desktop/look/StartUp.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/FirstInstance.h"
#include "desktop/window/MainWindow.h"
#include "files/Previews.h"
#include "server/Engine.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QSessionManager>

#include <cstdlib>

namespace {

/// The session ends: nobody may be there to answer a question, and there is little time.
void endWithTheSession(QApplication *app, MainWindow *window)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setFallbackSessionManagementEnabled(false);
#endif
    // Direct: the session goes on as soon as the signal is through.
    QObject::connect(
        app, &QGuiApplication::commitDataRequest, window,
        [window] {
            window->endInOrder();
            QMetaObject::invokeMethod(
                window, [] { QApplication::exit(); }, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
}

} // namespace

int main(int argc, char **argv)
{
    useUtf8Names();
    prepareProcess();
    const EndSignals endSignals;
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
    // "root" is no path, but the mode that the window is to start in.
    const QString argument = QFile::decodeName(argc > 1 ? argv[1] : "");
    const bool isMode = argument == QLatin1String("root");
    const QString path =
        argument.isEmpty() || isMode ? QString() : QFileInfo(argument).absoluteFilePath();
    FirstInstance first(directories.profiles);
    if (first.handOver(path))
        return EXIT_SUCCESS;
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
    QObject::connect(&first, &FirstInstance::called, &window, &MainWindow::call);
    endSignals.quitOnFirst(&app);
    endWithTheSession(&app, &window);
    window.call(path);
    const int status = QApplication::exec();
    window.endInOrder();
    return status;
}

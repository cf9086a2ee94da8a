#include "app/AllFaces.h"
#include "app/Announcing.h"
#include "app/MemoryReserve.h"
#include "app/Process.h"
#include "app/WorkingFolder.h"
#include "config/Profiles.h"
#include "config/Utf8Names.h"
#include "desktop/look/Look.h"
#include "desktop/look/StartUp.h"
#include "desktop/widgets/Prompts.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/FirstInstance.h"
#include "desktop/window/MainWindow.h"
#include "desktop/window/ServerRow.h"
#include "files/Previews.h"
#include "server/Engine.h"

#include <QApplication>

#include <iostream>

#include <unistd.h>

namespace {

constexpr auto glChoice = "QT_XCB_GL_INTEGRATION"; ///< read by the toolkit before its first window

enum ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

/// Prints what is asked for instead of a start; false when nothing is. Needs no display.
bool printsInformation(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QString information = readCommandLine(QCoreApplication::arguments()).information;
    std::cout << information.toStdString();
    return !information.isEmpty();
}

void complain(const QString &problem)
{
    std::cerr << "quillon: " << problem.toStdString() << '\n';
}

int fail(const QString &problem)
{
    complain(problem);
    // Started from a menu or a file manager: nobody reads what is printed.
    if (!::isatty(STDERR_FILENO))
        warn(nullptr, problem);
    return Failed;
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
    QApplication::setOrganizationName(QStringLiteral("Tessaroy"));
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLON_VERSION));
    if (printsInformation(argc, argv))
        return Done;
    Q_INIT_RESOURCE(icons);
    // No window here needs OpenGL, whose drivers take more memory than the rest of the program.
    const bool leavesOutGl = !qEnvironmentVariableIsSet(glChoice) && qputenv(glChoice, "none");
    QApplication app(argc, argv);
    QApplication::setDesktopFileName(QStringLiteral("example.quillon.Quillon"));
    const CommandLine line = readCommandLine(QApplication::arguments());
    if (!line.mistake.isEmpty()) {
        complain(line.mistake + QLatin1String("\nTry --help."));
        return WrongUsage;
    }
    endSignals.quitOnFirst(&app);
    Look look;
    look.takeStored();
    const Directories directories = Directories::ofProcess();
    const bool hasFolder = directories.makeProfileFolder();
    installTranslators(&app, directories.language);
    const QString path = line.request.path;
    if (const QString refusal = shareRefusal(path); !path.isEmpty() && !refusal.isEmpty())
        return fail(refusal);
    FirstInstance first(directories.profiles);
    if (first.handOver(line.request))
        return Done;
    const WorkingFolder workingFolder(directories.cache);
    // Copies of visitors would end up in the folder that the program was started in.
    if (!workingFolder.isEntered())
        return fail(MainWindow::tr("Can't make the folder") + QLatin1Char('\n')
                    + directories.cache);

    Profiles profiles(directories);
    profiles.beginRun();
    Previews::sweep(previewFolder());
    Previews previews(previewProgram(), previewFolder());
    EventHandler events;
    Engine engine(allFaces(), directories, &events, &previews);
    const MemoryReserve reserve(*engine.setup()->memory);
    MainWindow window(&profiles, &look, &events, engine.setup(), line.rootMode, deviceAddresses,
                      startAnnouncing);
    if (!hasFolder)
        events.msg(MainWindow::tr("Can't make the folder"), directories.profiles);
    QObject::connect(&first, &FirstInstance::called, &window, &MainWindow::call);
    endWithTheSession(&app, &window);
    window.call(line.request);
    if (leavesOutGl)
        qunsetenv(glChoice); // browsers that are opened do need it
    const int status = QApplication::exec();
    window.endInOrder();
    return status;
}

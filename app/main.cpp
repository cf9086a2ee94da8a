#include "app/AllRows.h"
#include "config/Configuration.h"
#include "desktop/look/StartUp.h"
#include "desktop/window/EventHandler.h"
#include "desktop/window/MobileWebServer.h"

#include <QApplication>

int main(int argc, char **argv)
{
    useUtf8Names();
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
    applyStoredLook();
    const bool hasFolder = setUpDirectories();
    installTranslators(&app);

    MobileWebServer window(argc > 1 ? argv[1] : nullptr, allRows());
    if (!hasFolder)
        EventHandler::eventHandler->msg(MobileWebServer::tr("Can't make the folder"),
                                        Configuration::ConfigDir);
    window.show();
    return QApplication::exec();
}

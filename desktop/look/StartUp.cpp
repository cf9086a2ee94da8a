#include "desktop/look/StartUp.h"

#include <QCoreApplication>
#include <QDebug>
#include <QLocale>
#include <QTranslator>

void installTranslators(QCoreApplication *app, const QString &languageFolder)
{
    auto *builtIn = new QTranslator(app);
    // Installed even when it is empty.
    static_cast<void>(builtIn->load(QStringLiteral("C"), QStringLiteral(":/res/lang")));
    QCoreApplication::installTranslator(builtIn);

    auto *own = new QTranslator(app);
    if (own->load(QStringLiteral("lang"), languageFolder)) {
        QCoreApplication::installTranslator(own);
        return;
    }
    qDebug().nospace() << "No translator found for locale=" << QLocale::system().name()
                       << " in dir=" << languageFolder;
}

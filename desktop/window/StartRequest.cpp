#include "desktop/window/StartRequest.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

const QLatin1String rootWord("root"); ///< no path, but the mode that the window is to start in

/// Not translated, like those of the program without a window.
QString plainText(const char *english)
{
    return QString::fromLatin1(english);
}

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    // The toolkit's own options have one dash and are no clusters of letters.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(
        plainText("Shares a file or folder with browsers and WebDAV clients."));
    // Of the toolkit's two the second one tells of its own options alone.
    const QCommandLineOption help({ QStringLiteral("h"), QStringLiteral("help") },
                                  plainText("Displays this help."));
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption start(
        QStringLiteral("start"), plainText("Start all rows at once, as the window's button does."));
    parser.addOptions({ help, start });
    parser.addPositionalArgument(QStringLiteral("PATH"), plainText("The file or folder to share."),
                                 QStringLiteral("[root] [PATH]"));

    CommandLine line;
    const bool parsed = parser.parse(arguments);
    if (parser.isSet(help))
        line.information = parser.helpText();
    else if (parser.isSet(version))
        line.information = QCoreApplication::applicationName() + QLatin1Char(' ')
            + QCoreApplication::applicationVersion() + QLatin1Char('\n');
    QStringList paths = parser.positionalArguments();
    line.rootMode = !paths.isEmpty() && paths.constFirst() == rootWord;
    if (line.rootMode)
        paths.removeFirst();
    if (!parsed)
        line.mistake = parser.errorText();
    else if (paths.size() > 1 || paths.contains(QString()))
        line.mistake = plainText("Name one file or folder to share.");
    else if (!paths.isEmpty())
        line.request.path = QDir::cleanPath(QFileInfo(paths.constFirst()).absoluteFilePath());
    line.request.startsRows = parser.isSet(start);
    return line;
}

#include "browser/CommandLine.h"

#include "browser/Language.h"

#include <QCommandLineParser>
#include <QCoreApplication>

CommandLine CommandLine::parse(int argc, char **argv)
{
    // The parser's texts need an application; the real one would ask for a screen.
    const QCoreApplication application(argc, argv);
    const Language language;
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("CommandLine", "A small web browser with a drawer."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption noPlugin(QStringLiteral("no-plugin"),
                                      QCoreApplication::translate("CommandLine", "Start without the drawer."));
    parser.addOption(noPlugin);
    const QCommandLineOption platform(
        QStringLiteral("platform"),
        QCoreApplication::translate("CommandLine", "Show the windows through this platform plug-in of Qt."),
        QCoreApplication::translate("CommandLine", "name"));
    parser.addOption(platform);
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions); // "-platform" is Qt's own way
    parser.addPositionalArgument(QStringLiteral("addresses"),
                                 QCoreApplication::translate("CommandLine", "Pages to open."),
                                 QStringLiteral("[addresses...]"));
    CommandLine result;
    result.isError = !parser.parse(QCoreApplication::arguments());
    if (result.isError)
        result.text = parser.errorText() + QLatin1Char('\n');
    else if (parser.isSet(help))
        result.text = parser.helpText();
    else if (parser.isSet(version))
        result.text =
            QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion());
    result.addresses = parser.positionalArguments();
    result.loadsPlugin = !parser.isSet(noPlugin);
    result.platform = parser.value(platform);
    return result;
}

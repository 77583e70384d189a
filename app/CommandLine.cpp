#include "app/CommandLine.h"

#include <QCommandLineParser>
#include <QtGlobal>

#include <algorithm>
#include <string_view>

CommandLine ParseCommandLine(const QStringList& arguments)
{
    const QCommandLineOption config(QStringLiteral("config"),
                                    QStringLiteral("Path to input XML with tool configuration."),
                                    QStringLiteral("path"));
    const QCommandLineOption noGui(QStringLiteral("no-gui"),
                                   QStringLiteral("Run application in command line mode."));
    const QCommandLineOption output(
        QStringLiteral("output"),
        QStringLiteral("Path to output flder where all generated data will be stored."),
        QStringLiteral("path"));
    QCommandLineParser parser;
    for (const QCommandLineOption& option : {config, noGui, output}) {
        parser.addOption(option);
        parser.addHelpOption();
    }
    // Qt registers this form of help on one platform only.
    parser.addOption(QCommandLineOption(QStringLiteral("?")));

    CommandLine commandLine;
    if (!parser.parse(arguments)) {
        commandLine.error = parser.errorText();
    }
    commandLine.configPath = parser.value(config);
    commandLine.outputPath = parser.value(output);
    commandLine.noGui = parser.isSet(noGui);
    const QStringList files = parser.positionalArguments();
    // The first argument is the program.
    if (arguments.size() == 2 && files.size() == 1 && !files.first().isEmpty()) {
        commandLine.advice =
            QStringLiteral("'%1' was not opened. To open a project, put --config before it.")
                .arg(files.first());
    }
    return commandLine;
}

void ChoosePlatform(int argc, const char* const* argv)
{
    const auto isGiven = [argc, argv](std::initializer_list<std::string_view> names) {
        return std::find_first_of(argv + 1, argv + std::max(argc, 1), names.begin(), names.end()) !=
               argv + std::max(argc, 1);
    };
    const bool isChosen =
        !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || isGiven({"-platform", "--platform"});
    if (!isChosen && isGiven({"--no-gui"})) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

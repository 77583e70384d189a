#include "tool/Commands.h"

#include "tool/ProjectData.h"

#include <QCommandLineParser>

#include <algorithm>
#include <new>

namespace {

const QString& ToolName()
{
    static const QString name = QStringLiteral("quillmap-tool");
    return name;
}

QVector<QCommandLineOption> WithCommonOptions(QVector<QCommandLineOption> options)
{
    options.append({{QStringLiteral("q"), QStringLiteral("quiet")},
                    QStringLiteral("Print only errors, and JSON if --json asks for it.")});
    options.append(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")});
    return options;
}

QString OptionNames(const QCommandLineOption& option)
{
    QStringList names;
    const QStringList all = option.names();
    for (const QString& name : all) {
        names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    }
    const QString value = option.valueName();
    return names.join(QStringLiteral(", ")) +
           (value.isEmpty() ? QString() : QLatin1Char(' ') + value);
}

/// Lines of a name and what it means, in two columns.
QString Table(const QVector<QPair<QString, QString>>& lines)
{
    int width = 0;
    for (const auto& line : lines) {
        width = qMax(width, line.first.size());
    }
    QString table;
    for (const auto& line : lines) {
        table += QStringLiteral("  %1  %2\n").arg(line.first.leftJustified(width), line.second);
    }
    return table;
}

QString OptionTable(const QVector<QCommandLineOption>& options)
{
    QVector<QPair<QString, QString>> lines;
    for (const QCommandLineOption& option : options) {
        lines.append({OptionNames(option), option.description()});
    }
    return QStringLiteral("Options:\n") + Table(lines);
}

QString ToolHelp()
{
    QVector<QPair<QString, QString>> commands;
    for (const Command& command : Commands()) {
        commands.append({command.name, command.summary.section(QLatin1Char('\n'), 0, 0)});
    }
    return QStringLiteral("Usage: quillmap-tool COMMAND [OPTION]... FILE...\n\n"
                          "Checks, shows and exports the projects and maps of Quillmap.\n\n"
                          "Commands:\n") +
           Table(commands) +
           QStringLiteral(
               "\nOptions:\n"
               "  -h, --help     Show this help, or after a command the command's help.\n"
               "  -v, --version  Show the version.\n\n"
               "Exit codes:\n"
               "  0  Done.\n"
               "  1  There are findings or differences, layers are out of date, or rows are "
               "refused.\n"
               "  2  The arguments are wrong.\n"
               "  3  A file cannot be read.\n"
               "  4  A file cannot be written.\n");
}

QString CommandHelp(const Command& command)
{
    return QStringLiteral("Usage: quillmap-tool %1 [OPTION]... %2\n\n%3\n\n")
               .arg(command.name, command.files, command.summary) +
           OptionTable(WithCommonOptions(command.options));
}

bool IsNegativeNumber(const QString& argument)
{
    return argument.size() > 1 && argument.at(0) == QLatin1Char('-') &&
           (argument.at(1).isDigit() || argument.at(1) == QLatin1Char('.'));
}

/// Hides negative numbers from Qt, which would take them for options, behind a blank.
QStringList WithHiddenNumbers(const QStringList& arguments)
{
    QStringList hidden;
    for (const QString& argument : arguments) {
        hidden.append(IsNegativeNumber(argument) ? QLatin1Char(' ') + argument : argument);
    }
    return hidden;
}

ToolExit RunCommand(const Command& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    const QVector<QCommandLineOption> options = WithCommonOptions(command.options);
    for (const QCommandLineOption& option : options) {
        parser.addOption(option);
    }
    if (!parser.parse(command.numberCount > 0 ? WithHiddenNumbers(arguments) : arguments)) {
        return UsageError(command.name, parser.errorText());
    }
    if (parser.isSet(QStringLiteral("help"))) {
        Console::PrintData(CommandHelp(command).toUtf8());
        return ToolExit::Done;
    }
    const QStringList files = parser.positionalArguments();
    const bool hasAll = files.size() == command.fileCount ||
                        files.size() == command.fileCount + command.numberCount ||
                        (command.takesMore && files.size() > command.fileCount);
    if (!hasAll) {
        return UsageError(command.name,
                          QStringLiteral("%1 is needed, and nothing else.").arg(command.files));
    }
    Console::SetQuiet(parser.isSet(QStringLiteral("quiet")));
    return command.run(files, parser);
}

ToolExit Run(const QStringList& arguments)
{
    if (arguments.size() < 2) {
        return UsageError({}, QStringLiteral("a command is needed."));
    }
    const QString& first = arguments.at(1);
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        Console::PrintData(ToolHelp().toUtf8());
        return ToolExit::Done;
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        Console::PrintData("quillmap-tool " QUILLMAP_VERSION "\n");
        return ToolExit::Done;
    }
    const QVector<Command>& commands = Commands();
    const auto command =
        std::find_if(commands.begin(), commands.end(),
                     [&first](const Command& candidate) { return candidate.name == first; });
    if (command == commands.end()) {
        return UsageError({},
                          QStringLiteral("there is no command %1.").arg(Console::Quoted(first)));
    }
    return RunCommand(*command, arguments.mid(1));
}

} // namespace

ToolExit UsageError(const QString& command, const QString& error)
{
    const QString help = command.isEmpty() ? QString() : QLatin1Char(' ') + command;
    Console::PrintError(ToolName(), error);
    Console::PrintError(ToolName(), QStringLiteral("try '%1%2 --help'.").arg(ToolName(), help));
    return ToolExit::BadArguments;
}

QCommandLineOption TypesOption()
{
    return {QStringLiteral("types"),
            QStringLiteral("Name the flags of a map as in an area types file or a project."),
            QStringLiteral("FILE")};
}

std::optional<ToolExit> ReadTypesOption(const QString& command, const QCommandLineParser& options,
                                        bool isMap, AreaFlagTypes& types)
{
    if (!options.isSet(QStringLiteral("types"))) {
        return {};
    }
    if (!isMap) {
        return UsageError(command, QStringLiteral("--types is for maps."));
    }
    const QString path = options.value(QStringLiteral("types"));
    return ReadFlagTypes(path, types) ? std::optional<ToolExit>() : ToolExit::Unreadable;
}

const QVector<Command>& Commands()
{
    static const QVector<Command> commands = {CheckCommand(),   InfoCommand(),   AtCommand(),
                                              ZonesCommand(),   DeriveCommand(), ExportCommand(),
                                              CompareCommand(), RenderCommand()};
    return commands;
}

ToolExit RunTool(const QStringList& arguments)
{
    ToolExit result = ToolExit::Unreadable;
    try {
        result = Run(arguments);
    } catch (const std::bad_alloc&) {
        Console::PrintError(ToolName(), QStringLiteral("there is no memory."));
    }
    return Console::Flush() ? result : ToolExit::NotWritten;
}

#pragma once

#include "tool/Console.h"

#include <QCommandLineOption>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

class QCommandLineParser;
class AreaFlagTypes;

/// One command of the tool, as its help describes it.
struct Command
{
    QString name;
    /// The arguments after the options as the help shows them, and how many files are needed.
    QString files;
    int fileCount = 1;
    /// Sentences, one a line.
    QString summary;
    QVector<QCommandLineOption> options;
    std::function<ToolExit(const QStringList& files, const QCommandLineParser& options)> run;
    /// How many numbers may stand after the files. The user gives all of them or none. With
    /// numbers, an argument such as -5 is a number and no option.
    int numberCount = 0;
    /// Whether any number of further texts may stand after the files.
    bool takesMore = false;
};

/// Looks for what makes a project's output wrong or surprising.
Command CheckCommand();
/// Shows what a file holds.
Command InfoCommand();
/// Shows what is at places of a project or a map.
Command AtCommand();
/// Shows the zones of a project as a table, or takes them from one.
Command ZonesCommand();
/// Computes layers anew by their formulas.
Command DeriveCommand();
/// Writes the files that the game reads.
Command ExportCommand();
/// Shows where two maps or two projects differ.
Command CompareCommand();
/// Makes a picture of a project, a map or a layer bitmap.
Command RenderCommand();

/// The option --types FILE of commands that read maps, which hold no names of flags.
QCommandLineOption TypesOption();
/// Reads the file of that option, if it is set. After a printed error it returns how the run ends:
/// the file cannot be read, or what the command reads is no map.
std::optional<ToolExit> ReadTypesOption(const QString& command, const QCommandLineParser& options,
                                        bool isMap, AreaFlagTypes& types);

/// Prints that a command's files or its combination of options is wrong. Return its result.
ToolExit UsageError(const QString& command, const QString& error);

/// In the order of the help.
const QVector<Command>& Commands();

/// Runs the command of the arguments; the first one is the program's name.
ToolExit RunTool(const QStringList& arguments);

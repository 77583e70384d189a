#pragma once

#include "tool/Console.h"

#include <QCommandLineOption>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class QCommandLineParser;

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
};

/// Looks for what makes a project's output wrong or surprising.
Command CheckCommand();
/// Shows what a file holds.
Command InfoCommand();
/// Writes the files that the game reads.
Command ExportCommand();
/// Shows where two maps or two projects differ.
Command CompareCommand();
/// Makes a picture of a project, a map or a layer bitmap.
Command RenderCommand();

/// Prints that a command's files or its combination of options is wrong. Return its result.
ToolExit UsageError(const QString& command, const QString& error);

/// In the order of the help.
const QVector<Command>& Commands();

/// Runs the command of the arguments; the first one is the program's name.
ToolExit RunTool(const QStringList& arguments);

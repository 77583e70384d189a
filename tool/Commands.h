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
    /// What stands behind the options, and how many files that may be.
    QString files;
    int fileCount = 1;
    /// Sentences, one a line.
    QString summary;
    QVector<QCommandLineOption> options;
    std::function<ToolExit(const QStringList& files, const QCommandLineParser& options)> run;
};

/// Looks for what makes a project's output wrong or surprising.
Command CheckCommand();
/// Tells what a file holds.
Command InfoCommand();
/// Writes what the game reads of a project.
Command ExportCommand();
/// Tells where two maps or two projects differ.
Command CompareCommand();
/// Makes a picture of a project, a map or a layer bitmap.
Command RenderCommand();

/// For a command's arguments, when the files or what the options mean together is wrong; the result
/// is to be returned.
ToolExit UsageError(const QString& command, const QString& error);

/// In the order of the help.
const QVector<Command>& Commands();

/// Does what the arguments ask for; the first one is the program's name.
ToolExit RunTool(const QStringList& arguments);

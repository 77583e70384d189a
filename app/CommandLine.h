#pragma once

#include <QString>
#include <QStringList>

/// What the program was asked to do.
struct CommandLine
{
    /// As typed; empty when not given.
    QString configPath;
    QString outputPath;
    bool noGui = false;
    /// What is wrong with the arguments; empty when nothing is.
    QString error;
};

/// arguments starts with the program's name. Help is accepted and has no effect.
CommandLine ParseCommandLine(const QStringList& arguments);

/// Chooses the offscreen platform for a run without a GUI, unless a platform was chosen by
/// QT_QPA_PLATFORM or -platform: a batch run needs no display, and the toolkit aborts when the one
/// it finds is dead. To be called before the application object is made.
void ChoosePlatform(int argc, const char* const* argv);

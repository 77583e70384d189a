#pragma once

#include <QString>
#include <QStringList>

/// The parsed arguments of the program.
struct CommandLine
{
    /// As typed; empty when not given.
    QString configPath;
    QString outputPath;
    bool noGui = false;
    /// What is wrong with the arguments; empty if nothing is.
    QString error;
    /// What the editor tells when the only argument is a file, which it does not open; or empty.
    QString advice;
};

/// arguments starts with the program's name. Help is accepted and has no effect.
CommandLine ParseCommandLine(const QStringList& arguments);

/// Chooses the offscreen platform for a run without a GUI, unless a platform was chosen by
/// QT_QPA_PLATFORM or -platform: a batch run needs no display, and Qt aborts if the display does
/// not work. Call it before the application object is made.
void ChoosePlatform(int argc, const char* const* argv);

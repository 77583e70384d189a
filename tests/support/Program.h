#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// What a finished program left behind.
struct ProgramRun
{
    /// -1 when it crashed or never ended.
    int exitCode = -1;
    QString output;
    /// The lines that it logged, without the toolkit's own warnings.
    QStringList log;
};

/// Runs a program in a folder and waits for its end.
ProgramRun RunProgram(const QString& path, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment);

/// The lines without the "HH:mm:ss - " in front; a line that has none says so.
QStringList WithoutTimes(const QStringList& lines);

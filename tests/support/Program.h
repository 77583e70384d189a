#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// The results of a finished program.
struct ProgramRun
{
    /// -1 if it crashed or never ended.
    int exitCode = -1;
    QString output;
    /// The lines that it logged, without Qt's own warnings.
    QStringList log;
};

/// How long a program may run, in milliseconds: machines may be slow, and sanitizers slow it down.
constexpr int LongestRun = 240000;

/// Runs a program in a folder and waits for its end.
ProgramRun RunProgram(const QString& path, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment);

/// The lines without the leading "HH:mm:ss - ". A line without it is marked.
QStringList WithoutTimes(const QStringList& lines);

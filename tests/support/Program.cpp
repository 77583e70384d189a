#include "tests/support/Program.h"

#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace {

/// True for lines of Qt, and for those of the coverage counters when they cannot write their
/// counts.
bool IsForeignWarning(const QString& line)
{
    static const std::array<QLatin1String, 5> starts = {
        QLatin1String("QStandardPaths: "), QLatin1String("QCommandLineParser: "),
        QLatin1String("QFSFileEngine::open: "), QLatin1String("profiling:"),
        QLatin1String("libgcov profiling error:")};
    return std::any_of(starts.begin(), starts.end(),
                       [&line](QLatin1String start) { return line.startsWith(start); });
}

} // namespace

ProgramRun RunProgram(const QString& path, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environment);
    process.start(path, arguments, QIODevice::ReadOnly);
    ProgramRun run;
    if (process.waitForFinished(LongestRun) && process.exitStatus() == QProcess::NormalExit) {
        run.exitCode = process.exitCode();
    }
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    // A sanitizer's report must not get lost: ./test looks for it.
    if (errors.contains(QLatin1String("SUMMARY: "))) {
        qWarning("%s", qPrintable(errors));
    }
    const QStringList lines = errors.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (!IsForeignWarning(line)) {
            run.log.append(line);
        }
    }
    return run;
}

QStringList WithoutTimes(const QStringList& lines)
{
    static const QRegularExpression time(QStringLiteral("^[0-2][0-9]:[0-5][0-9]:[0-5][0-9] - "));
    QStringList stripped;
    for (const QString& line : lines) {
        const bool hasTime = line.contains(time);
        stripped.append(hasTime ? line.mid(11) : QStringLiteral("no time in: ") + line);
    }
    return stripped;
}

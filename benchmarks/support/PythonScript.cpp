#include "benchmarks/support/PythonScript.h"

#include <QFile>
#include <QProcess>

namespace {

/// Debian's own interpreter has Debian's modules.
QString Interpreter()
{
    const QString debian = QStringLiteral("/usr/bin/python3");
    return QFile::exists(debian) ? debian : QStringLiteral("python3");
}

} // namespace

void MeasurePython(benchmark::State& state, const QString& script, const QStringList& arguments)
{
    for (auto _ : state) {
        QProcess python;
        python.start(Interpreter(), QStringList(script) + arguments);
        python.waitForFinished(-1);
        bool isNumber = false;
        const double seconds = python.readAllStandardOutput().trimmed().toDouble(&isNumber);
        if (!isNumber) {
            state.SkipWithError(python.readAllStandardError().constData());
            return;
        }
        state.SetIterationTime(seconds);
    }
}

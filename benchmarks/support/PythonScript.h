#pragma once

#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

/// Runs a Python script that measures itself and prints one number, the seconds of one pass, and
/// reports them as the benchmark's time. For benchmarks that use manual time.
void MeasurePython(benchmark::State& state, const QString& script, const QStringList& arguments);

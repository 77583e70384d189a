#pragma once

#include <benchmark/benchmark.h>

#include <functional>

using Work = std::function<void()>;

/// The milliseconds of processor time that the work takes, with nothing of its data in the caches:
/// the time does not count what else the machine is busy with.
double ColdMilliseconds(const Work& work);

/// The same for each pass of a benchmark that uses manual time.
void MeasureCold(benchmark::State& state, const Work& work);

#pragma once

#include <benchmark/benchmark.h>

#include <functional>

using Work = std::function<void()>;

/// The processor time of the work in milliseconds, with none of its data in the caches. Processor
/// time does not include other work of the machine.
double ColdMilliseconds(const Work& work);

/// The same for each pass of a benchmark that uses manual time.
void MeasureCold(benchmark::State& state, const Work& work);

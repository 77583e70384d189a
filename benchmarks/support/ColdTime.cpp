#include "benchmarks/support/ColdTime.h"

#include <ctime>
#include <vector>

namespace {

/// Writes more than any cache holds.
void EmptyCaches()
{
    static std::vector<char> memory(std::size_t(96) << 20);
    for (std::size_t i = 0; i < memory.size(); i += 64) {
        ++memory[i];
    }
    benchmark::ClobberMemory();
}

double ThreadMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace

double ColdMilliseconds(const Work& work)
{
    EmptyCaches();
    const double start = ThreadMilliseconds();
    work();
    return ThreadMilliseconds() - start;
}

void MeasureCold(benchmark::State& state, const Work& work)
{
    for (auto _ : state) {
        state.SetIterationTime(ColdMilliseconds(work) / 1e3);
    }
}

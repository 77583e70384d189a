#include "benchmarks/support/RatioReporter.h"

#include <algorithm>
#include <cstdio>

namespace {

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        const std::string& name = run.run_name.function_name;
        const std::size_t slash = name.rfind('/');
        if (run.run_type == Run::RT_Iteration && !run.error_occurred &&
            slash != std::string::npos) {
            const double seconds = run.real_accumulated_time /
                                   static_cast<double>(std::max<int64_t>(run.iterations, 1));
            m_times[name.substr(0, slash)][name.substr(slash + 1)].push_back(seconds);
        }
    }
}

void RatioReporter::Finalize()
{
    ConsoleReporter::Finalize();
    std::printf("\n%-34s %12s  %-22s %12s %12s %12s\n", "work", "ours (ms)", "beside", "its ms",
                "ours / it", "it / ours");
    for (const auto& [work, times] : m_times) {
        const auto ours = times.find("ours");
        if (ours == times.end()) {
            continue;
        }
        const double own = Median(ours->second);
        for (const auto& [who, seconds] : times) {
            if (who != "ours") {
                const double other = Median(seconds);
                m_worst = std::max(m_worst, own / other);
                std::printf("%-34s %12.3f  %-22s %12.3f %12.2f %12.2f\n", work.c_str(), own * 1e3,
                            who.c_str(), other * 1e3, own / other, other / own);
            }
        }
    }
}

int RunBenchmarks(int argc, char** argv, double mostRatio)
{
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=5";
    std::string minTime = "--benchmark_min_time=0.05";
    std::string aggregates = "--benchmark_display_aggregates_only=false";
    arguments.insert(arguments.begin() + 1,
                     {interleave.data(), repetitions.data(), minTime.data(), aggregates.data()});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (reporter.WorstRatio() > mostRatio) {
        std::printf("A ratio is above %.2f.\n", mostRatio);
        return 1;
    }
    return 0;
}

#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Prints the usual table and after it, for each group of benchmarks named "work/case/who", the
/// ratios of the medians: "ours" against every other of the group, measured in the same run.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    /// Seconds by group and version.
    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
};

/// The main function of a benchmark program: interleaves the repetitions of all benchmarks, so that
/// a noisy moment falls on all of them, and prints the ratios.
int RunBenchmarks(int argc, char** argv);

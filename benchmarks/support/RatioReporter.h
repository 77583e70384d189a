#pragma once

#include <benchmark/benchmark.h>

#include <limits>
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
    /// The largest ratio of "ours" to another one; 0 without any.
    double WorstRatio() const { return m_worst; }

private:
    /// Seconds by group and version.
    std::map<std::string, std::map<std::string, std::vector<double>>> m_times;
    double m_worst = 0;
};

/// The main function of a benchmark program: interleaves the repetitions of all benchmarks, so that
/// a noisy moment falls on all of them, and prints the ratios. Returns 1 when one of them is above
/// mostRatio, otherwise 0.
int RunBenchmarks(int argc, char** argv,
                  double mostRatio = std::numeric_limits<double>::infinity());

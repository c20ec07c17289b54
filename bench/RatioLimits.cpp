#include "RatioLimits.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace
{
/// Prints as usual and remembers the fastest time of each benchmark.
class TimeKeeper : public benchmark::ConsoleReporter
{
public:
    TimeKeeper()
        : ConsoleReporter(OO_Tabular) // without colours: the output is read by scripts as well
    {
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration)
                continue;
            // What waits for the disk is registered with UseRealTime.
            const bool isReal = !run.run_name.time_type.empty();
            const double total = isReal ? run.real_accumulated_time : run.cpu_accumulated_time;
            const double seconds = total / double(run.iterations);
            const auto added = m_seconds.emplace(run.run_name.function_name, seconds).first;
            added->second = std::min(added->second, seconds);
        }
    }

    const double* secondsOf(const std::string& name) const
    {
        const auto found = m_seconds.find(name);
        return found == m_seconds.end() ? nullptr : &found->second;
    }

private:
    std::map<std::string, double> m_seconds;
};
} // namespace

int runWithLimits(int argc, char** argv, const std::vector<RatioLimit>& limits)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    TimeKeeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    int missed = 0;
    for (const RatioLimit& limit : limits) {
        const double* subject = keeper.secondsOf(limit.subject);
        const double* peer = keeper.secondsOf(limit.peer);
        if (!subject || !peer)
            continue;
        missed += !reportRatio(limit.subject, *subject / *peer, limit.limit);
    }
    return missed ? 1 : 0;
}

bool reportRatio(const std::string& subject, double ratio, double limit)
{
    const bool isKept = ratio <= limit;
    std::printf("ratio %-40s %8.2f   limit %8.2f   %s\n", subject.c_str(), ratio, limit,
                isKept ? "ok" : "MISSED");
    return isKept;
}

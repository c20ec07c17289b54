#pragma once

#include <string>
#include <vector>

/// One limit of a benchmark program: the time of `subject` over that of `peer`, both names of
/// benchmarks measured in the same run, must not exceed `limit`.
struct RatioLimit {
    std::string subject;
    std::string peer;
    double limit;
};

/// The main of a benchmark program: runs the registered benchmarks (the usual options apply;
/// several repetitions count with the fastest), then prints each ratio beside its limit. Answers 1
/// when a limit is missed, else 0; limits whose benchmarks were filtered out are left out.
int runWithLimits(int argc, char** argv, const std::vector<RatioLimit>& limits);

/// Prints a ratio that was measured otherwise like those; answers whether it is within its limit.
bool reportRatio(const std::string& subject, double ratio, double limit);

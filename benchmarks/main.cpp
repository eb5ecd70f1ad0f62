// The benchmarks: every operation is measured in the library and in its peers, in one run, and what counts is
// the ratio. Takes the arguments of Google Benchmark (--benchmark_filter=REGEX and so on) and
//     --strict    exit with status 1 when a target is not shown to be reached
// Without it, a short row is no failure: the machine may just be busy.

#include "RatioReporter.h"

#include <cstring>
#include <vector>

int main(int argc, char **argv)
{
    // Each case is run several times, in turns with all others, so that a slow spell of the machine spreads
    // over all of them and the medians pass it by. Ahead of the caller's arguments, which thus win.
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char minTime[] = "--benchmark_min_time=0.05";

    bool strict = false;
    std::vector<char *> arguments{argv[0], repetitions, interleaving, minTime};
    for (int i = 1; i < argc; ++i)
    {
        if (std::strcmp(argv[i], "--strict") == 0)
            strict = true;
        else
            arguments.push_back(argv[i]);
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    bench::Rows rows;
    bench::AddStringRows(rows);
    bench::AddDigestRows(rows);
    bench::AddHashRows(rows);
    bench::AddOperationRows(rows);
    bench::AddCharacterRows(rows);
    bench::AddCaseRows(rows);
    bench::AddNumberRows(rows);
    bench::AddFormatRows(rows);
    bench::AddLockRows(rows);
    bench::AddEventRows(rows);
    bench::AddCrashDumpRows(rows);
    bench::AddPathRows(rows);
    bench::AddStackRows(rows);

    bench::RatioReporter reporter(rows);
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0) // it has said that nothing matches the filter
        return 2;
    return strict && !reporter.AllTargetsReached() ? 1 : 0;
}

/// @file
/// RatioReporter: turns the runs of all cases into one table of ratios.
#pragma once

#include "Rows.h"

#include <map>
#include <string>
#include <vector>

namespace bench
{

/// Collects the times of all repetitions and prints, when all are done, one line for each row: the median of
/// each case, the ratio of the fastest peer that counts to the library (above 1: the library is faster), the
/// target, and whether it is reached.
///
/// Times are processor time: on a machine that does other things too, they waver less than the clock does.
class RatioReporter : public benchmark::BenchmarkReporter
{
public:
    explicit RatioReporter(Rows rows) : m_rows(std::move(rows)) {}

    bool ReportContext(Context const &context) override;
    void ReportRuns(std::vector<Run> const &runs) override;
    void Finalize() override;

    /// Whether each row that was run and has a target is shown to reach it, against all peers that count:
    /// where one of them was left out, nothing is shown. To be called after the run.
    bool AllTargetsReached() const { return m_missed == 0; }

private:
    /// Nanoseconds by peer.
    using Medians = std::map<std::string, double>;

    Medians MediansOf(Row const &row) const;
    std::vector<std::string> PeersOf(std::string const &group) const;
    void PrintHeader(std::string const &group, std::vector<std::string> const &peers) const;
    void PrintRow(Row const &row, Medians const &medians, std::vector<std::string> const &peers);

    Rows m_rows;
    std::map<std::string, std::vector<double>> m_times; ///< nanoseconds, by the name of the case
    std::size_t m_operationWidth = 0;
    int m_missed = 0;
};

} // namespace bench

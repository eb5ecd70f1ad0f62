#include "RatioReporter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iomanip>
#include <ostream>

namespace bench
{

namespace
{

constexpr int FigureWidth = 10;
constexpr char NoFigure[] = "-";

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::size_t const middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string Fixed(double value, int decimals, char const *unit)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f%s", decimals, value, unit);
    return text.data();
}

/// Three digits or a little more, in the unit that fits.
std::string TimeText(double nanoseconds)
{
    double value = nanoseconds;
    char const *unit = " ns";
    if (value >= 1e6)
    {
        value /= 1e6;
        unit = " ms";
    }
    else if (value >= 1e3)
    {
        value /= 1e3;
        unit = " us";
    }
    return Fixed(value, value < 10 ? 2 : value < 100 ? 1 : 0, unit);
}

/// Right-aligned, two spaces away from the column before.
void PrintCell(std::ostream &out, std::string const &text, std::size_t width)
{
    out << std::right << std::setw(static_cast<int>(width) + 2) << text;
}

bool Contains(std::vector<std::string> const &names, std::string const &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::size_t PeerWidth(std::string const &peer)
{
    return std::max<std::size_t>(FigureWidth, peer.size());
}

} // namespace

bool RatioReporter::ReportContext(Context const &context)
{
    PrintBasicContext(&GetErrorStream(), context);
    return true;
}

void RatioReporter::ReportRuns(std::vector<Run> const &runs)
{
    for (Run const &run : runs)
    {
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        bool const isWallTime = !run.run_name.time_type.empty();
        double const time = isWallTime ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        m_times[run.run_name.function_name].push_back(time / benchmark::GetTimeUnitMultiplier(run.time_unit) *
                                                      1e9);
    }
}

void RatioReporter::Finalize()
{
    for (Row const &row : m_rows)
        m_operationWidth = std::max(m_operationWidth, row.operation.size());

    std::string group;
    std::vector<std::string> peers;
    for (Row const &row : m_rows)
    {
        Medians const medians = MediansOf(row);
        if (medians.empty()) // left out by the filter
            continue;
        if (row.group != group)
        {
            group = row.group;
            peers = PeersOf(group);
            PrintHeader(group, peers);
        }
        PrintRow(row, medians, peers);
    }
    GetOutputStream() << "\nMedians of processor time, or of time passed where several threads work. "
                         "Ratio: time of the peer named / time of the library.\n";
}

RatioReporter::Medians RatioReporter::MediansOf(Row const &row) const
{
    Medians medians;
    for (auto const &[name, times] : m_times)
    {
        auto const [operation, peer] = SplitCaseName(name);
        if (operation == row.operation)
            medians[peer] = Median(times);
    }
    return medians;
}

std::vector<std::string> RatioReporter::PeersOf(std::string const &group) const
{
    std::vector<std::string> peers;
    for (Row const &row : m_rows)
    {
        if (row.group != group)
            continue;
        for (auto const &[peer, median] : MediansOf(row))
        {
            if (peer != OwnName && !Contains(peers, peer))
                peers.push_back(peer);
        }
    }
    return peers;
}

void RatioReporter::PrintHeader(std::string const &group, std::vector<std::string> const &peers) const
{
    std::ostream &out = GetOutputStream();
    out << '\n' << std::left << std::setw(static_cast<int>(m_operationWidth)) << group;
    PrintCell(out, OwnName, FigureWidth);
    for (std::string const &peer : peers)
        PrintCell(out, peer, PeerWidth(peer));
    PrintCell(out, "ratio", FigureWidth);
    PrintCell(out, "target", FigureWidth);
    out << "  result\n";
}

void RatioReporter::PrintRow(Row const &row, Medians const &medians, std::vector<std::string> const &peers)
{
    auto const figureOf = [&medians](std::string const &peer)
    {
        auto const found = medians.find(peer);
        return found == medians.end() ? std::string(NoFigure) : TimeText(found->second);
    };

    std::ostream &out = GetOutputStream();
    out << std::left << std::setw(static_cast<int>(m_operationWidth)) << row.operation;
    PrintCell(out, figureOf(OwnName), FigureWidth);
    for (std::string const &peer : peers)
        PrintCell(out, figureOf(peer), PeerWidth(peer));

    auto const own = medians.find(OwnName);
    auto fastest = medians.end();
    for (auto candidate = medians.begin(); candidate != medians.end(); ++candidate)
    {
        bool const counts = row.target ? Contains(row.target->peers, candidate->first) : candidate != own;
        if (counts && (fastest == medians.end() || candidate->second < fastest->second))
            fastest = candidate;
    }
    bool const compared = own != medians.end() && fastest != medians.end();
    // Cut, not rounded: a row that falls short must not show the ratio that it misses.
    double const ratio = compared ? std::floor(fastest->second / own->second * 100) / 100 : 0;

    PrintCell(out, compared ? Fixed(ratio, 2, " x") : NoFigure, FigureWidth);
    PrintCell(out, row.target ? Fixed(row.target->ratio, 2, " x") : NoFigure, FigureWidth);
    out << "  ";
    if (row.target && compared)
        out << (ratio >= row.target->ratio ? "ok, " : "short, ");
    out << (compared ? "against " + fastest->first : "not compared");
    if (row.target)
    {
        bool reached = compared && ratio >= row.target->ratio;
        for (std::string const &peer : row.target->peers)
        {
            if (medians.count(peer) != 0)
                continue;
            out << ", without " << peer;
            reached = false;
        }
        m_missed += !reached;
    }
    out << '\n';
}

} // namespace bench

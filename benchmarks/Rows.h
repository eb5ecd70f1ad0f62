/// @file
/// The rows of the final table and how a group adds its cases to them.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench
{

/// The column of the library's own cases; every other case is that of a peer.
inline constexpr char OwnName[] = "vansys";

/// What a row has to reach: at least `ratio` times as fast as the fastest of `peers`.
struct Target
{
    double ratio;
    std::vector<std::string> peers;
};

/// One operation, measured in the library and in its peers.
struct Row
{
    std::string group;
    std::string operation;
    std::optional<Target> target; ///< none: the figures are for information
};

/// In the order of the table. The rows of a group follow each other.
using Rows = std::vector<Row>;

/// The name under which a case is registered: "operation|peer".
std::string CaseName(Row const &row, std::string const &peer);

/// The operation and the peer of a case's name.
std::pair<std::string, std::string> SplitCaseName(std::string const &name);

/// Registers the case of `peer`. `body` is called with the `benchmark::State`.
template <class Body>
void AddCase(Row const &row, std::string const &peer, Body body)
{
    benchmark::RegisterBenchmark(CaseName(row, peer).c_str(), std::move(body));
}

/// The same for a case in which several threads work: what counts is the time that passes.
template <class Body>
void AddWallTimeCase(Row const &row, std::string const &peer, Body body)
{
    benchmark::RegisterBenchmark(CaseName(row, peer).c_str(), std::move(body))->UseRealTime();
}

// The groups. Each adds its rows and registers their cases, and adds the versions of its peers to what is
// printed at the start.
void AddStringRows(Rows &rows);
void AddDigestRows(Rows &rows);
void AddHashRows(Rows &rows);
void AddOperationRows(Rows &rows);
void AddCharacterRows(Rows &rows);
void AddCaseRows(Rows &rows);
void AddNumberRows(Rows &rows);
void AddFormatRows(Rows &rows);
void AddLockRows(Rows &rows);
void AddEventRows(Rows &rows);
void AddCrashDumpRows(Rows &rows);
void AddPathRows(Rows &rows);
void AddStackRows(Rows &rows);

} // namespace bench

/// @file
/// Finding the files.
#pragma once

#include "Report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace treehash
{

struct FoundFile
{
    std::string name;
    std::uint64_t size; ///< When it was found; only good for an estimate.
};

/// The regular files that the paths name and that lie below them, each name once, sorted by the bytes of the
/// names. Paths that are symbolic links are followed, links below them are not, so a walk always ends. What
/// cannot be looked into is reported, and the rest goes on.
std::vector<FoundFile> FindFiles(std::vector<std::string> const &paths, Report &report);

} // namespace treehash

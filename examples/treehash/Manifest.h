/// @file
/// The lines of a manifest, as coreutils writes and reads them: digest, space, space or "*", name.
///
/// A line begins with a backslash when its name holds a line feed, a carriage return or a backslash; these
/// are then written as \n, \r and \\.
#pragma once

#include "Algorithm.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace treehash
{

/// One file and its digest.
struct Entry
{
    Algorithm const *algorithm;
    std::string digest; ///< Lowercase hexadecimal digits.
    std::string name;
};

/// The name with \n, \r and \\ for what would break a line.
std::string EscapedName(std::string_view name);

/// The line for a file, with its line feed.
std::string FormatEntry(std::string_view digest, std::string_view name);

/// Reads a line, given without its line feed. None when it is malformed, or when its digest is not of the
/// algorithm that is required (null: all are welcome).
std::optional<Entry> ParseEntry(std::string_view line, Algorithm const *required);

/// What a manifest lists.
struct Manifest
{
    std::vector<Entry> entries;
    std::vector<std::size_t> malformedLines; ///< Their numbers, counted from 1.
};

/// Reads a whole manifest. Empty lines and lines that begin with "#" are skipped, a carriage return at the
/// end of a line is dropped. Throws a `VantrelException` with the reason when the file cannot be read.
Manifest ReadManifest(std::string const &name, Algorithm const *required);

} // namespace treehash

/// @file
/// Opening a file with the C library, which takes bytes on one system and text on the other.
#pragma once

#include <vansys/TPathCore.h>

#include <cstdio>

namespace unpack
{

/// Null when there is no such file, or it is out of reach.
std::FILE *OpenForReading(TPathCore const &path);

} // namespace unpack

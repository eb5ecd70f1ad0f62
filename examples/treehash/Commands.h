/// @file
/// What the program does.
#pragma once

#include "Options.h"

namespace treehash
{

/// The exit statuses.
enum class Outcome : int
{
    Success = 0,
    Failure = 1,
    WrongUsage = 2
};

/// Hashes the paths of the options and writes the manifest. All failures are reported.
Outcome CreateManifest(Options const &options);

/// Verifies what the manifest of the options lists. All failures are reported.
Outcome VerifyManifest(Options const &options);

} // namespace treehash

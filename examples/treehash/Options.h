/// @file
/// The command line.
#pragma once

#include "Algorithm.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace treehash
{

enum class Command
{
    Help,
    Create,
    Verify
};

/// Files are given by their names; see Platform.h.
struct Options
{
    Command command = Command::Create;
    Algorithm const *algorithm = nullptr; ///< Null when none was asked for.
    std::vector<std::string> paths;       ///< What to hash; at least one for `Create`.
    std::optional<std::string> collation; ///< The locale whose collation sorts the names, if not their bytes.
    std::optional<std::string> output;    ///< Where the manifest goes, if not to standard output.
    std::string manifest;                 ///< What to verify.
};

/// Takes the arguments without the program's name. Throws a `VantrelUserErrorException` that says what is
/// wrong with them.
Options ParseOptions(std::vector<std::string> const &arguments);

/// The first lines of the help.
extern std::string_view const UsageText;

/// All that `--help` prints after the usage.
extern std::string_view const HelpText;

} // namespace treehash

#include "Options.h"

#include "Platform.h"

#include <vansys/TFormatStringCore.h>
#include <vansys/VantrelUserErrorException.h>

namespace treehash
{

std::string_view const UsageText = "Usage: treehash [-a ALGORITHM] [-l LOCALE] [-o FILE] [--] PATH...\n"
                                   "       treehash [-a ALGORITHM] -c MANIFEST\n"
                                   "       treehash --help\n";

std::string_view const HelpText = R"(
Hashes every regular file below each PATH and prints a manifest: one line per file, as sha256sum and its
relatives print and check them. Or verifies the files that a manifest lists.

  -a ALGORITHM  sha1, sha224, sha256 (the default), sha384 or sha512. With -c: the only one accepted; if
                it is not given, the length of each digest tells the algorithm.
  -l LOCALE     Sort the lines as readers of LOCALE look names up: sv, de@collation=phonebook, or "" for the
                locale of the user.
  -o FILE       Write the manifest to FILE. It is written under another name in the same folder and takes
                its place when complete. FILE itself is left out of the manifest. A FILE that is a device
                or a pipe is written to directly.
  -c MANIFEST   Verify: print the name of each file that differs or cannot be read, then a summary.
                Empty lines and lines that begin with # are skipped.
  --help        Print this text.

Without -l the lines are sorted by name, byte by byte. A name is the PATH as given, without doubled slashes, and what
lies below it. A name that occurs twice is listed once. A PATH of "-" is a file of that name, listed as
"./-". Names are bytes, and need not be valid in any encoding; on Windows they are UTF-8, with slashes for
backslashes. A line whose name holds a line feed, a carriage return or a backslash begins with a backslash,
and has \n, \r and \\ in the name.

A PATH that is a symbolic link is followed; links found on the way are not. Devices, pipes and sockets
found on the way are skipped. A file or folder that cannot be read, or that changes while it is read, is
reported on standard error, left out, and the others go on.

A progress bar is shown on standard error when that is a terminal.

Exit status: 0 when everything went well; 1 when something could not be read or written, differs, or is
malformed, or a manifest lists nothing; 2 for a wrong command line.
)";

namespace
{

TStringCore Text(std::string const &argument)
{
    return TStringCore::fromStdString(argument);
}

Algorithm const *RequireAlgorithm(std::string const &name)
{
    Algorithm const *const algorithm = FindAlgorithm(std::string_view(name));
    if (algorithm == nullptr)
        throw VantrelUserErrorException(TFormatStringCore("unknown algorithm '%1'").arg(Text(name)));
    return algorithm;
}

/// Options that do not go together, and what is missing.
void RequireConsistency(Options const &options)
{
    if (options.command == Command::Verify)
    {
        if (options.output)
            throw VantrelUserErrorException("-c and -o do not go together");
        if (options.collation)
            throw VantrelUserErrorException("-c and -l do not go together");
        if (!options.paths.empty())
            throw VantrelUserErrorException(
                TFormatStringCore("-c takes its files from the manifest; '%1' is one argument too many")
                    .arg(Text(options.paths.front())));
    }
    if (options.command == Command::Create && options.paths.empty())
        throw VantrelUserErrorException("no PATH given");
}

} // namespace

Options ParseOptions(std::vector<std::string> const &arguments)
{
    Options options;
    bool onlyPathsFollow = false;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument)
    {
        if (onlyPathsFollow || argument->size() < 2 || argument->front() != '-')
        {
            options.paths.push_back(NameFromArgument(*argument));
            continue;
        }
        if (*argument == "--")
        {
            onlyPathsFollow = true;
            continue;
        }
        if (*argument == "--help")
        {
            options.command = Command::Help;
            return options;
        }

        std::string const option = argument->substr(0, 2);
        if (option != "-a" && option != "-c" && option != "-l" && option != "-o")
            throw VantrelUserErrorException(TFormatStringCore("unknown option '%1'").arg(Text(*argument)));
        std::string value = argument->substr(2); // as in -asha1
        if (value.empty())
        {
            if (++argument == arguments.end())
                throw VantrelUserErrorException(
                    TFormatStringCore("option '%1' needs a value").arg(Text(option)));
            value = *argument;
        }

        if (option == "-a")
            options.algorithm = RequireAlgorithm(value);
        else if (option == "-l")
            options.collation = value;
        else if (option == "-o")
            options.output = NameFromArgument(value);
        else
        {
            options.command = Command::Verify;
            options.manifest = NameFromArgument(value);
        }
    }
    RequireConsistency(options);
    return options;
}

} // namespace treehash

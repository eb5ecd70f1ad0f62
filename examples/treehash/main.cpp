/// @file
/// treehash: hashes the files of a tree into a manifest, and verifies one.
#include "Commands.h"
#include "Platform.h"

#include <vansys/VantrelUserErrorException.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace
{

using namespace treehash;

Outcome PrintHelp()
{
    bool const printed = std::fwrite(UsageText.data(), 1, UsageText.size(), stdout) == UsageText.size() &&
                         std::fwrite(HelpText.data(), 1, HelpText.size(), stdout) == HelpText.size() &&
                         std::fflush(stdout) == 0;
    return printed ? Outcome::Success : Outcome::Failure;
}

Outcome RunCommand(Options const &options)
{
    switch (options.command)
    {
    case Command::Help:
        break;
    case Command::Create:
        return CreateManifest(options);
    case Command::Verify:
        return VerifyManifest(options);
    }
    return PrintHelp();
}

void PrintError(std::string const &message)
{
    std::fputs(("treehash: " + message + "\n").c_str(), stderr);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    auto outcome = Outcome::Failure;
    try
    {
        outcome =
            RunCommand(ParseOptions(std::vector<std::string>(arguments + 1, arguments + argumentCount)));
    }
    catch (VantrelUserErrorException const &exception)
    {
        PrintError(exception.GetMessagesFront().toStdString());
        std::fwrite(UsageText.data(), 1, UsageText.size(), stderr);
        outcome = Outcome::WrongUsage;
    }
    catch (VantrelException const &exception)
    {
        PrintError(exception.GetConcatenatedMessages().toStdString());
    }
    catch (TStringCore::Exception const &exception)
    {
        PrintError(exception.GetConcatenatedMessages().toStdString());
    }
    catch (std::exception const &exception)
    {
        PrintError(exception.what());
    }
    catch (Interrupted const &)
    {
        // The user knows.
    }
    return static_cast<int>(outcome);
}

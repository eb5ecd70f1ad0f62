/// @file
/// treehash: hashes the files of a tree into a manifest, and verifies one.
#include "Commands.h"
#include "Platform.h"

#include <vansys/VantrelUserErrorException.h>

#include <cstdio>
#include <exception>
#include <string>

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
    WriteMessage("treehash: " + message + "\n");
}

} // namespace

int main(int argumentCount, char **arguments)
{
    PrepareStandardStreams();
    auto outcome = Outcome::Failure;
    try
    {
        outcome = RunCommand(ParseOptions(CommandLineArguments(argumentCount, arguments)));
    }
    catch (VantrelUserErrorException const &exception)
    {
        PrintError(exception.GetMessagesFront().toStdString());
        WriteMessage(UsageText);
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

/// @file
/// One crash of the helper program, and what is left of it.
#pragma once

#include "support/ChildProcess.h"
#include "support/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

struct CrashRun
{
    /// The reports go to a folder that lives as long as this, unless there is another one.
    explicit CrashRun(std::string const &kind, std::vector<std::string> const &options = {},
                      ChildProcess::Setup setup = {}, std::string const &otherFolder = {})
    {
        std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
        // The sanitizers have handlers of their own, which would be the previous ones.
        for (char const *const name : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            setup.environment.push_back(name + std::string("=handle_segv=0:handle_sigbus=0:handle_sigfpe=0:"
                                                           "handle_abort=0:handle_sigill=0:detect_leaks=0"));
        std::vector<std::string> arguments{otherFolder.empty() ? folder.Path().string() : otherFolder, kind};
        arguments.insert(arguments.end(), options.begin(), options.end());
        auto const begin = std::chrono::steady_clock::now();
        ChildProcess child(VANSYS_HELPER_CRASH_PROGRAM, arguments, setup);
        processId = child.Id();
        result = child.Wait();
        duration = std::chrono::steady_clock::now() - begin;
        output = child.Output();
        text = OnlyFile(".txt");
    }

    /// The paths of the files that end in this.
    std::vector<std::string> Files(std::string const &extension) const
    {
        std::vector<std::string> files;
        for (auto const &entry : std::filesystem::directory_iterator(folder.Path()))
            if (entry.path().extension() == extension)
                files.push_back(entry.path().string());
        return files;
    }

    /// What is in the only file that ends in this; empty when it is not the only one.
    std::string OnlyFile(std::string const &extension) const
    {
        std::vector<std::string> const files = Files(extension);
        return files.size() == 1 ? TemporaryFolder::Contents(files.front()) : std::string();
    }

    bool IsTextComplete() const { return text.ends_with("\nend of crash report\n"); }

    TemporaryFolder const folder;
    unsigned processId = 0;
    ChildProcess::Result result;
    std::chrono::duration<double> duration{};
    std::string output;
    std::string text;
};

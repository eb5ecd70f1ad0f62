/// @file
/// One crash of the helper program, and what is left of it.
#pragma once

#include "support/ChildProcess.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// A folder of its own for the reports, which goes away with this.
class ReportFolder
{
public:
    ReportFolder()
    {
        static int s_count = 0;
        auto const now = std::chrono::steady_clock::now().time_since_epoch().count();
        m_path = std::filesystem::temp_directory_path() /
                 ("vansys-crash-" + std::to_string(now) + '-' + std::to_string(++s_count));
        std::filesystem::create_directory(m_path);
        std::filesystem::permissions(m_path, std::filesystem::perms::all);
    }
    ~ReportFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ReportFolder(ReportFolder const &) = delete;
    ReportFolder &operator=(ReportFolder const &) = delete;

    std::string Path() const { return m_path.string(); }

    /// The paths of the files that end in this.
    std::vector<std::string> Files(std::string const &extension) const
    {
        std::vector<std::string> files;
        for (auto const &entry : std::filesystem::directory_iterator(m_path))
            if (entry.path().extension() == extension)
                files.push_back(entry.path().string());
        return files;
    }

    /// What is in the only file that ends in this; empty when it is not the only one.
    std::string OnlyFile(std::string const &extension) const
    {
        std::vector<std::string> const files = Files(extension);
        if (files.size() != 1)
            return {};
        std::ifstream file(files.front(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};

struct CrashRun
{
    explicit CrashRun(std::string const &kind, std::vector<std::string> const &options = {},
                      ChildProcess::Setup const &setup = {}, std::string const &otherFolder = {})
    {
        std::vector<std::string> arguments{otherFolder.empty() ? folder.Path() : otherFolder, kind};
        arguments.insert(arguments.end(), options.begin(), options.end());
        // The sanitizers have handlers of their own, which would be the previous ones.
        ChildProcess::Setup whole = setup;
        for (char const *const name : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            whole.environment.push_back(name + std::string("=handle_segv=0:handle_sigbus=0:handle_sigfpe=0:"
                                                           "handle_abort=0:handle_sigill=0:detect_leaks=0"));
        ChildProcess child(VANSYS_HELPER_CRASH_PROGRAM, arguments, whole);
        processId = child.Id();
        auto const begin = std::chrono::steady_clock::now();
        result = child.Wait();
        duration = std::chrono::steady_clock::now() - begin;
        output = child.Output();
        text = folder.OnlyFile(".txt");
    }

    bool IsTextComplete() const { return text.ends_with("\nend of crash report\n"); }

    ReportFolder folder;
    unsigned processId = 0;
    ChildProcess::Result result;
    std::chrono::duration<double> duration{};
    std::string output;
    std::string text;
};

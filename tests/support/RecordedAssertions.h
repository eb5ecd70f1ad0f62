/// @file
/// Lets failed assertions pass, and records them.
#pragma once

#include "vansys/AssertHooks.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

/// While it exists, a hook that returns is installed. One at a time.
class RecordedAssertions
{
public:
    RecordedAssertions() { AssertHooks::SetLogicAssertHook(Record); }
    RecordedAssertions(RecordedAssertions const &) = delete;
    RecordedAssertions &operator=(RecordedAssertions const &) = delete;

    ~RecordedAssertions()
    {
        AssertHooks::SetLogicAssertHook(nullptr);
        Take();
    }

    /// The failures since the last call, each as "file:line: expression".
    static std::vector<std::string> Take()
    {
        std::lock_guard const lock(s_mutex);
        return std::exchange(s_reports, {});
    }

private:
    static void Record(char const *file, int line, char const *expression)
    {
        std::lock_guard const lock(s_mutex);
        s_reports.push_back(std::string(file) + ":" + std::to_string(line) + ": " + expression);
    }

    inline static std::mutex s_mutex;
    inline static std::vector<std::string> s_reports;
};

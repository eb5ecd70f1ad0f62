/// @file
/// What lldb makes of a dump.
#pragma once

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

/// Fails the test unless lldb shows a stack for each thread of `threads`, with these functions on it. Prints
/// why where there is no lldb.
inline void ExpectStacksInDebugger(std::string const &dump,
                                   std::vector<std::vector<std::string>> const &threads)
{
    std::string const debugger = VANSYS_LLDB;
    if (debugger.empty())
    {
        std::printf("lldb is not installed: not asked what it makes of the dump\n");
        return;
    }
    ChildProcess lldb(debugger, {"--batch", "-o", "target create --core \"" + dump + "\"", "-o", "bt all"});
    EXPECT_TRUE(lldb.Wait().Exited(0));
    std::vector<std::string> stacks;
    std::string const &output = lldb.Output();
    for (std::size_t start = output.find("thread #"); start != std::string::npos;)
    {
        std::size_t const next = output.find("thread #", start + 1);
        stacks.push_back(output.substr(start, next - start).substr(0, 2000));
        start = next;
    }
    for (std::vector<std::string> const &functions : threads)
    {
        auto const hasAll = [&](std::string const &stack)
        {
            return std::all_of(functions.begin(), functions.end(),
                               [&](std::string const &function)
                               { return stack.find(function + "(") != std::string::npos; });
        };
        auto const found = std::find_if(stacks.begin(), stacks.end(), hasAll);
        if (found == stacks.end())
            ADD_FAILURE() << functions[0] << " is on no further stack of\n" << testing::PrintToString(stacks);
        else
            stacks.erase(found);
    }
}

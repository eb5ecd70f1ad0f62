#include "support/DebugOutput.h"

#include <gtest/gtest.h>

std::string debugOutputOf(std::function<void()> const &function)
{
    testing::internal::CaptureStderr();
    function();
    std::string output = testing::internal::GetCapturedStderr();
    // There, each message is a line.
    if (!output.empty() && output.back() == '\n')
        output.pop_back();
    else
        ADD_FAILURE() << "a message without a line end: " << output;
    return output;
}

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace std::chrono_literals;

TEST(ChildProcess, TellsHowTheProgramEnded)
{
    ChildProcess waiting(VANSYS_HELPER_CHILD_PROGRAM, {"wait", "two words"}, {{"CHILD_VARIABLE=value"}, {}});
    EXPECT_NE(waiting.Id(), 0U);
    ASSERT_TRUE(waiting.WaitForOutput("two words value"));
    EXPECT_FALSE(waiting.WaitForOutput("something else", 1ms));
    waiting.CloseInput();
    EXPECT_TRUE(waiting.Wait().Exited(3));
    EXPECT_TRUE(waiting.Wait().Exited(3)) << "asked again";

    ChildProcess writing(VANSYS_HELPER_CHILD_PROGRAM, {"write"});
    writing.CloseInput();
    EXPECT_TRUE(writing.Wait().Exited(3));
    EXPECT_GE(writing.Output().size(), 20000 * sizeof("more than fits into a pipe"));

    ChildProcess aborted(VANSYS_HELPER_CHILD_PROGRAM, {"abort"});
    ChildProcess::Result const result = aborted.Wait();
    EXPECT_TRUE(result.hasEnded && result.status != 0) << result.status;
#if !defined(_WIN32)
    EXPECT_TRUE(result.WasEndedBy(SIGABRT));
#endif

    ChildProcess endless(VANSYS_HELPER_CHILD_PROGRAM, {"wait"});
    EXPECT_FALSE(endless.Wait(1ms).hasEnded);
    EXPECT_FALSE(endless.Wait().hasEnded) << "killed";
}

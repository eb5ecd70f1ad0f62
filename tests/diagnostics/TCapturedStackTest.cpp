#include "vansys/TCapturedStack.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

namespace
{

/// Calls itself until it is so deep, then captures.
[[gnu::noinline]] TCapturedStack CaptureDeep(int depth, std::size_t skip, std::size_t maxFrames)
{
    TCapturedStack stack;
    if (depth > 0)
        stack = CaptureDeep(depth - 1, skip, maxFrames);
    else
        stack = TCapturedStack::Capture(skip, maxFrames);
    asm volatile("" ::"r"(&stack) : "memory"); // so that no call becomes a jump
    return stack;
}

bool IsFrame(std::string const &line, char const *number, char const *function)
{
    return line.starts_with(number) && line.find(function) != std::string::npos;
}

} // namespace

TEST(TCapturedStack, BeginsWithTheFunctionThatCaptures)
{
    TCapturedStack const stack = CaptureDeep(2, 0, 64);
    ASSERT_GT(stack.FrameCount(), 4u);
    std::vector<std::string> const lines = stack.Lines();
    ASSERT_EQ(lines.size(), stack.FrameCount());
    EXPECT_TRUE(IsFrame(lines[0], "0x00000000 ", "CaptureDeep")) << lines[0];
    EXPECT_TRUE(IsFrame(lines[2], "0x00000002 ", "CaptureDeep")) << lines[2];
    EXPECT_TRUE(IsFrame(lines[3], "0x00000003 ", "BeginsWithTheFunctionThatCaptures")) << lines[3];
    EXPECT_NE(lines[0].find("TCapturedStackTest.cpp("), std::string::npos) << lines[0];

    std::string text;
    for (std::string const &line : lines)
        text += line + '\n';
    std::string onOtherThread;
    std::thread([&] { onOtherThread = stack.Text(); }).join();
    EXPECT_EQ(onOtherThread, text);
}

TEST(TCapturedStack, KeepsWhatIsWanted)
{
    TCapturedStack const all = CaptureDeep(5, 0, 64);
    TCapturedStack const some = CaptureDeep(5, 2, 3);
    ASSERT_EQ(some.FrameCount(), 3u);
    EXPECT_TRUE(std::equal(some.Frames(), some.Frames() + 3, all.Frames() + 2));
    EXPECT_NE(some, all);
    EXPECT_EQ(CaptureDeep(100, 0, 1000).FrameCount(), std::size_t{TCapturedStack::MaxFrames});
    EXPECT_TRUE(CaptureDeep(0, 1000, 64).IsEmpty());
    EXPECT_TRUE(CaptureDeep(0, 0, 0).Lines().empty());
}

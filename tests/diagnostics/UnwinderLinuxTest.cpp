#include "main/diagnostics/Unwinder_linux.h"

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/OwnMemory_linux.h"

#include "diagnostics/WalkedThread.h"
#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <new>
#include <random>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

using namespace vansys::detail;

TEST(Unwinder, FindsWhatTheRuntimeFinds)
{
    std::array<std::uintptr_t, 64> expected{};
    ucontext_t context{};
    getcontext(&context);
    std::size_t const count = CaptureStack(expected.data(), expected.size());
    std::array<Frame, 64> frames;
    UnwoundFrames const unwound = Unwind(RegistersOf(context), frames.data(), frames.size());
    EXPECT_TRUE(unwound.isComplete);
    ASSERT_EQ(unwound.count, count);
    for (std::size_t i = 1; i < count; ++i)
        EXPECT_EQ(frames[i].programCounter, expected[i]);
    EXPECT_TRUE(frames[0].isInstruction && !frames[1].isInstruction);
    EXPECT_EQ(Unwind(RegistersOf(context), frames.data(), 2).count, 2u);
}

TEST(Unwinder, SurvivesDamagedStacks)
{
    std::size_t const size = 1 << 16;
    void *const memory = mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    munmap(static_cast<char *>(memory) + size, size); // nothing lies behind it
    auto *const words = static_cast<std::uintptr_t *>(memory);
    std::size_t const wordCount = size / sizeof *words;
    auto const begin = reinterpret_cast<std::uintptr_t>(memory);
    std::array<std::uintptr_t, 64> code{};
    std::size_t const codeCount = CaptureStack(code.data(), code.size());
    std::mt19937_64 random(7);
    auto const anything = [&]() -> std::uintptr_t
    {
        switch (random() % 4)
        {
        case 0:
            return code[random() % codeCount] + random() % 64;
        case 1:
            return random();
        default:
            return begin + random() % size / 8 * 8;
        }
    };
    std::vector<Frame> frames(wordCount);
    std::size_t most = 0;
    for (int round = 0; round < 2000; ++round)
    {
        for (std::size_t i = 0; i < wordCount; i += 1 + random() % 64)
            words[i] = anything();
        Registers registers{};
        for (std::uintptr_t &value : registers)
            value = anything();
        most = std::max(most, Unwind(registers, frames.data(), frames.size()).count);
    }
    EXPECT_GT(most, 3u); // some of them look like stacks
    munmap(memory, size);
}

TEST(Unwinder, EvaluatesExpressions)
{
    std::uintptr_t const word = 77;
    Registers registers{};
    registers[StackPointerRegister] = reinterpret_cast<std::uintptr_t>(&word) - 16;
    struct Case
    {
        std::vector<unsigned char> code;
        bool succeeds;
        std::uintptr_t value;
    } const cases[] = {
        {{0x77, 16, 0x06}, true, 77},           // what the stack pointer and 16 point to
        {{0x92, 7, 16, 0x06}, true, 77},        // the same
        {{0x23, 0x80, 0x01}, true, 1000 + 128}, // the initial value and a long number
        {{0x33, 0x09, 0xFE, 0x22}, true, 1},    // 3 + -2
        {{0x0B, 0xFF, 0xFF, 0x32, 0x25}, true, ~std::uintptr_t{0} / 4}, // -1 shifted by 2
        {{0x0B, 0xFC, 0xFF, 0x32, 0x26}, true, ~std::uintptr_t{0}},     // -4 shifted by 2, with its sign
        {{0x11, 0x7F, 0x32, 0x1B}, true, 0},                            // -1 / 2
        {{0x35, 0x32, 0x1C, 0x12, 0x1E}, true, 9},                      // (5 - 2) squared
        {{0x31, 0x32, 0x33, 0x17, 0x1C}, true, ~std::uintptr_t{0}},     // 1 2 3 rotated to 3 1 2: 1 - 2
        {{0x31, 0x28, 1, 0, 0x06, 0x35}, true, 5},                      // jumps over what would fail
        {{0x30, 0x06}, false, 0},                                       // nothing is at 0
        {{0x35, 0x30, 0x1B}, false, 0},                                 // 5 / 0
        {{0x13, 0x13}, false, 0},                                       // nothing is left
        {{0x2F, 0xFD, 0xFF}, false, 0},                                 // for ever
        {{0x2F, 0x10, 0x00}, false, 0},                                 // out of the code
        {{0x08}, false, 0},                                             // cut off
        {{0xFF}, false, 0},
    };
    for (Case const &row : cases)
    {
        OwnMemory memory;
        std::uintptr_t value = 0;
        RegisterRule const rule{RegisterRule::Expression, static_cast<std::int64_t>(row.code.size()),
                                row.code.data()};
        EXPECT_EQ(EvaluateExpression(rule, registers, 1000, memory, value), row.succeeds)
            << testing::PrintToString(row.code);
        EXPECT_EQ(row.succeeds ? value : 0, row.value) << testing::PrintToString(row.code);
    }
}

TEST(Unwinder, LeavesWalksFalseWithoutMemory)
{
    std::atomic<bool> isOver(false);
    auto const run = [&isOver]
    {
        while (!isOver)
            usleep(1000);
    };
    WalkedThread const thread(run, [&isOver] { isOver = true; });
    RecordingWalker walker;
    for (bool const ofAll : {true, false})
    {
        auto const throwing = [&]
        {
            if (!(ofAll ? walker.GenerateCallstacksForAllThreads() : walker.GenerateCallstack(thread.Id())))
                throw std::bad_alloc();
        };
        EXPECT_GT(failEachAllocation([&] { walker.Reset(); }, throwing, [] {}), 3);
        EXPECT_FALSE(walker.GetCallstack().empty());
        walker.SetThreadAccess(TStackWalker::ThreadAccess::Signal);
    }
}

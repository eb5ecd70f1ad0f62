#include "main/diagnostics/Unwinder_linux.h"

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/OwnMemory_linux.h"
#include "main/diagnostics/Symbols.h"

#include "diagnostics/WalkedThread.h"
#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <csetjmp>
#include <csignal>
#include <cstdint>
#include <functional>
#include <new>
#include <random>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace walked
{

sigjmp_buf g_afterCrash;
void (*volatile g_null)() = nullptr;
int g_afterCall = 0;

[[gnu::noinline]] void CallNull()
{
    g_null();
    g_afterCall = 1;
}

} // namespace walked

namespace vansys::detail
{

namespace
{

std::array<Frame, 64> g_frames;
UnwoundFrames g_unwound;

void Unwind(int, siginfo_t *, void *context)
{
    g_unwound = vansys::detail::Unwind(RegistersOf(*static_cast<ucontext_t *>(context)), g_frames.data(), 64);
    siglongjmp(walked::g_afterCrash, 1);
}

TEST(Unwinder, FindsWhatTheRuntimeFinds)
{
    std::array<std::uintptr_t, 64> expected{};
    ucontext_t context{};
    getcontext(&context);
    std::size_t const count = CaptureStack(expected.data(), expected.size());
    std::array<Frame, 64> frames;
    UnwoundFrames const unwound = vansys::detail::Unwind(RegistersOf(context), frames.data(), frames.size());
    EXPECT_TRUE(unwound.isComplete);
    ASSERT_EQ(unwound.count, count);
    for (std::size_t i = 1; i < count; ++i)
    {
        EXPECT_EQ(frames[i].programCounter, expected[i]);
        EXPECT_FALSE(frames[i].isInstruction);
    }
    EXPECT_TRUE(frames[0].isInstruction);
    EXPECT_EQ(vansys::detail::Unwind(RegistersOf(context), frames.data(), 2).count, 2u);
}

TEST(Unwinder, FindsWhoCalledANullPointer)
{
    // On a stack of its own, below which the interrupted one is not looked for.
    std::vector<unsigned char> stack(std::size_t{1} << 16);
    stack_t const alternate{stack.data(), 0, stack.size()};
    stack_t before{};
    sigaltstack(&alternate, &before);
    struct sigaction action
    {
    };
    struct sigaction previous
    {
    };
    action.sa_sigaction = Unwind;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigaction(SIGSEGV, &action, &previous);
    if (sigsetjmp(walked::g_afterCrash, 1) == 0)
        walked::CallNull();
    sigaction(SIGSEGV, &previous, nullptr);
    sigaltstack(&before, nullptr);
    ASSERT_GT(g_unwound.count, 3u);
    EXPECT_TRUE(g_unwound.isComplete);
    EXPECT_EQ(g_frames[0].programCounter, 0u);
    EXPECT_EQ(LookUpSymbol(g_frames[1].Instruction()).function, "walked::CallNull");
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
        most = std::max(most, vansys::detail::Unwind(registers, frames.data(), frames.size()).count);
    }
    EXPECT_GT(most, 3u); // some of them look like stacks
    munmap(memory, size);
}

TEST(Unwinder, EvaluatesExpressions)
{
    std::uintptr_t const word = 77;
    auto const address = reinterpret_cast<std::uintptr_t>(&word);
    Registers registers{};
    registers[StackPointerRegister] = address - 16;
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
    {
        WalkedThread const thread(
            [&isOver]
            {
                while (!isOver)
                    usleep(1000);
            });
        RecordingWalker walker;
        std::function<bool()> const walks[] = {[&] { return walker.GenerateCallstacksForAllThreads(); },
                                               [&] { return walker.GenerateCallstack(thread.Id()); }};
        for (std::function<bool()> const &walk : walks)
        {
            auto const throwing = [&walk]
            {
                if (!walk())
                    throw std::bad_alloc();
            };
            EXPECT_GT(failEachAllocation([&] { walker.Reset(); }, throwing, [] {}), 3);
            EXPECT_FALSE(walker.GetCallstack().empty());
            walker.SetThreadAccess(TStackWalker::ThreadAccess::Signal);
        }
        isOver = true;
    }
}

} // namespace

} // namespace vansys::detail

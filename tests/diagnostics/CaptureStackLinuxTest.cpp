#include "main/diagnostics/CaptureStack.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

#include <alloca.h>
#include <unwind.h>

using namespace vansys::detail;

namespace
{

using Addresses = std::vector<std::uintptr_t>;

/// What the compiler's run-time library says, which reads the tables of each function anew.
[[gnu::noinline]] Addresses Reference()
{
    Addresses addresses;
    _Unwind_Backtrace(
        [](_Unwind_Context *context, void *result)
        {
            Addresses &found = *static_cast<Addresses *>(result);
            int wasInterrupted = 0;
            std::uintptr_t const address = _Unwind_GetIPInfo(context, &wasInterrupted);
            if (wasInterrupted)
                found.pop_back(); // the trampoline
            if (address)
                found.push_back(wasInterrupted ? address + 1 : address);
            return _URC_NO_REASON;
        },
        &addresses);
    addresses.erase(addresses.begin()); // this function
    return addresses;
}

/// Both begin here, at different calls; from there on they are to be the same.
[[gnu::noinline]] void ExpectReference(char const *where)
{
    Addresses const expected = Reference();
    for (char const *const state : {"first", "again"})
    {
        Addresses found(1000);
        found.resize(CaptureStack(found.data(), found.size()));
        ASSERT_GT(found.size(), 2u) << where;
        found.front() = expected.front();
        EXPECT_EQ(found, expected) << where << ", " << state;
    }
}

// Functions with frames of all kinds.

[[gnu::noinline]] void Recursive(int depth)
{
    if (depth == 0)
        ExpectReference("recursion");
    else
        Recursive(depth - 1);
    asm volatile("");
}

[[gnu::noinline]] void OfVariableSize(std::size_t size)
{
    alignas(128) std::array<char volatile, 256> aligned{};
    auto *const room = static_cast<char volatile *>(alloca(size));
    room[size - 1] = aligned[1];
    if (size > 1000)
        OfVariableSize(size - 1000); // what finds this frame is saved in that one
    else
        ExpectReference("a frame of variable size");
    asm volatile("" ::"r"(room), "r"(aligned.data()));
}

int Compare(void const *, void const *)
{
    ExpectReference("a callback of the C library");
    return 0;
}

} // namespace

TEST(CaptureStack, FindsWhatTheTablesSay)
{
    for (int const depth : {0, 1, 40, 500})
        Recursive(depth);
    OfVariableSize(5000);
    std::array<int, 2> numbers{};
    std::qsort(numbers.data(), numbers.size(), sizeof(int), &Compare);
    auto const before = std::signal(SIGUSR1, [](int) { ExpectReference("a handler of signals"); });
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, before);
    try
    {
        throw std::runtime_error("thrown");
    }
    catch (std::runtime_error const &)
    {
        ExpectReference("a handler of exceptions");
    }
    auto const recurseOften = []
    {
        for (int i = 0; i < 200; ++i)
            Recursive(i % 20);
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(recurseOften);
    for (std::thread &thread : threads)
        thread.join();
}

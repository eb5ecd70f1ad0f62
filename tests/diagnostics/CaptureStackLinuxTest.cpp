#include "main/diagnostics/CaptureStack.h"

#include <gtest/gtest.h>

#include <algorithm>
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

/// With room of its own, as handlers of signals may not allocate.
struct Addresses
{
    std::array<std::uintptr_t, 1000> room{};
    std::size_t size = 0;

    void Add(std::uintptr_t address)
    {
        if (size < room.size())
            room[size++] = address;
    }

    std::vector<std::uintptr_t> ToVector() const { return {room.data(), room.data() + size}; }

    /// The first ones aside, which are different calls in one function.
    bool IsLike(Addresses const &other) const
    {
        return size == other.size && std::equal(room.data() + 1, room.data() + size, other.room.data() + 1);
    }
};

/// What the compiler's run-time library says, which reads the tables of each function anew.
[[gnu::noinline]] void FindReference(Addresses &addresses)
{
    _Unwind_Backtrace(
        [](_Unwind_Context *context, void *result)
        {
            Addresses &found = *static_cast<Addresses *>(result);
            int wasInterrupted = 0;
            std::uintptr_t const address = _Unwind_GetIPInfo(context, &wasInterrupted);
            if (wasInterrupted)
                --found.size; // the trampoline
            if (address)
                found.Add(wasInterrupted ? address + 1 : address);
            return _URC_NO_REASON;
        },
        &addresses);
    --addresses.size; // this function
    std::copy_n(addresses.room.data() + 1, addresses.size, addresses.room.data());
}

/// Both begin here, at different calls; from there on they are to be the same.
[[gnu::noinline]] void ExpectReference(char const *where)
{
    Addresses expected;
    FindReference(expected);
    for (char const *const state : {"first", "again"})
    {
        Addresses found;
        found.size = CaptureStack(found.room.data(), found.room.size());
        if (found.size <= 2 || !found.IsLike(expected))
            ADD_FAILURE() << where << ", " << state << ": " << testing::PrintToString(found.ToVector())
                          << " instead of " << testing::PrintToString(expected.ToVector());
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

#include "main/diagnostics/CaptureStack.h"
#include "main/diagnostics/Symbols.h"

#include "SymbolModule.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <alloca.h>
#include <dlfcn.h>
#include <unistd.h>
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
            if (std::uintptr_t const address = _Unwind_GetIP(context))
                static_cast<Addresses *>(result)->push_back(address);
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
    auto *const room = static_cast<char volatile *>(alloca(size));
    room[size - 1] = 0;
    if (size > 1000)
        OfVariableSize(size - 1000); // what finds this frame is saved in that one
    else
        ExpectReference("a frame of variable size");
    asm volatile("" ::"r"(room));
}

[[gnu::noinline]] void Aligned(std::size_t size)
{
    alignas(128) std::array<char volatile, 256> room{};
    auto *const more = static_cast<char volatile *>(alloca(size));
    more[0] = room[1];
    ExpectReference("an aligned frame");
    asm volatile("" ::"r"(room.data()), "r"(more));
}

int Compare(void const *, void const *)
{
    static int s_calls = 0;
    if (s_calls++ == 0)
        ExpectReference("a callback of the C library");
    return 0;
}

std::array<std::uintptr_t, 64> g_interrupted;
std::size_t g_interruptedCount = 0;

void OnSignal(int)
{
    g_interruptedCount = CaptureStack(g_interrupted.data(), g_interrupted.size());
    asm volatile("");
}

} // namespace

TEST(CaptureStack, FindsWhatTheTablesSay)
{
    for (int const depth : {0, 1, 40, 500})
        Recursive(depth);
    OfVariableSize(5000);
    Aligned(77);
    std::array<int, 4> numbers{};
    std::qsort(numbers.data(), numbers.size(), sizeof(int), &Compare);
    try
    {
        throw std::runtime_error("thrown");
    }
    catch (std::runtime_error const &)
    {
        ExpectReference("a handler of exceptions");
    }
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            []
            {
                for (int j = 0; j < 200; ++j)
                    Recursive(j % 20);
            });
    for (std::thread &thread : threads)
        thread.join();
}

TEST(CaptureStack, LeavesTheTrampolineOfASignalOut)
{
    auto const before = std::signal(SIGUSR1, &OnSignal);
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, before);
    std::string functions;
    for (std::size_t i = 0; i < g_interruptedCount; ++i)
        functions += LookUpSymbol(g_interrupted[i] - 1).function + '\n';
    EXPECT_NE(functions.find("OnSignal\n"), std::string::npos) << functions;
    EXPECT_EQ(functions.find("restore_rt"), std::string::npos) << functions;
    EXPECT_NE(functions.find("TestBody\n"), std::string::npos) << functions;
}

TEST(CaptureStack, ForgetsModulesThatAreUnloaded)
{
    // The two have the same instructions, but for the size of a frame, and are loaded at the same place.
    std::string const path =
        (std::filesystem::temp_directory_path() / ("vansys-capture." + std::to_string(getpid()))).string();
    std::uintptr_t address = 0;
    int atTheSamePlace = 0;
    for (char const *const build : {VANSYS_SYMBOL_MODULE, VANSYS_OTHER_SYMBOL_MODULE, VANSYS_SYMBOL_MODULE})
    {
        std::filesystem::remove(path);
        std::filesystem::copy_file(build, path);
        void *const module = dlopen(path.c_str(), RTLD_NOW);
        ASSERT_NE(module, nullptr) << dlerror();
        auto const outer = reinterpret_cast<SymbolModuleOuter *>(dlsym(module, "symbol_module_outer"));
        atTheSamePlace += reinterpret_cast<std::uintptr_t>(outer) == address;
        address = reinterpret_cast<std::uintptr_t>(outer);
        outer(
            [](void *)
            {
                ExpectReference("a module");
                asm volatile("");
            },
            nullptr);
        dlclose(module);
    }
    std::filesystem::remove(path);
    RecordProperty("reloads_at_the_same_place", atTheSamePlace);
    if (atTheSamePlace == 0)
        GTEST_SKIP() << "no module was loaded where another one had been";
}

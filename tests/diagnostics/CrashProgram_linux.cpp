#include "diagnostics/CrashProgram.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace
{

int volatile g_zero = 0;
void (*volatile g_noFunction)() = nullptr;

__attribute__((noinline, no_sanitize("undefined"))) void CrashByCall()
{
    g_noFunction();
    g_zero = 0; // makes the call a call, and not a jump
}

__attribute__((noinline, no_sanitize("undefined"))) void CrashByDivision()
{
    g_zero = 100 / g_zero;
}

/// A free chunk of the allocator's whose pointer to the next one is wrong: it follows it with its lock held.
[[gnu::noinline]] void CrashInMalloc()
{
    std::thread([] {}).join(); // takes no lock before the first thread
    constexpr std::size_t Size = 40;
    void *volatile chunks[9];
    for (void *volatile &chunk : chunks)
        chunk = std::malloc(Size);
    for (void *volatile const &chunk : chunks)
        std::free(chunk);
    auto volatile *const last = static_cast<std::uintptr_t volatile *>(chunks[8]);
    *last = (reinterpret_cast<std::uintptr_t>(chunks[8]) >> 12) ^ 0x1230; // as the allocator disguises them
    for (void *volatile &chunk : chunks)
        chunk = std::malloc(Size);
}

void ExitWhenSignalIsWhole(int, siginfo_t *info, void *)
{
    _exit(info->si_code == SEGV_MAPERR && info->si_addr == nullptr ? 42 : 43);
}

constexpr CrashKind Kinds[] = {
    {"call", &CrashByCall},
    {"division", &CrashByDivision},
    {"malloc", &CrashInMalloc},
    {"sent", [] { kill(getpid(), SIGBUS); }},
};

} // namespace

std::span<CrashKind const> SystemCrashKinds()
{
    return Kinds;
}

void PrepareSystem() {}

void ApplySystemOption(std::string_view name, TCrashHandler::Options &options)
{
    if (name == "to-output")
        options.textDescriptor = STDOUT_FILENO;
    if (name == "previous")
    {
        struct sigaction action
        {
        };
        action.sa_sigaction = &ExitWhenSignalIsWhole;
        action.sa_flags = SA_SIGINFO;
        sigaction(SIGSEGV, &action, nullptr);
    }
    if (name == "no-descriptors")
    {
        while (open("/dev/null", O_RDONLY) >= 0)
        {
        }
    }
    if (name == "to-full-pipe")
    {
        int ends[2] = {};
        if (pipe2(ends, O_NONBLOCK) != 0)
            std::exit(1); // NOLINT(concurrency-mt-unsafe): there is one thread
        while (write(ends[1], "full", 4) > 0)
        {
        }
        fcntl(ends[1], F_SETFL, 0);
        options.textDescriptor = ends[1];
    }
}

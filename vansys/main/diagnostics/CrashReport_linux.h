/// @file
/// What the handler of a crash writes, and where. Linux only; without `malloc` and locks.
#pragma once

#include "main/diagnostics/CrashText.h"
#include "vansys/CrashDumpType.h"

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <ucontext.h>

namespace vansys::detail
{

struct CrashSettings
{
    static constexpr std::size_t LongestPrefix = 4000;

    bool writeText;
    bool writeDump;
    CrashDumpType dumpType;
    int textDescriptor;             ///< negative for a file
    char prefix[LongestPrefix + 1]; ///< of the files' names: "/folder/base-"
};

/// What the handler was given.
struct Crash
{
    CrashSettings const *settings;
    int process;
    int thread;
    std::int64_t time; ///< in seconds since 1970
    int signal;
    siginfo_t const *info;
    ucontext_t *context;
};

/// The name of a file of the report.
class CrashFileName
{
public:
    CrashFileName(Crash const &crash, char const *extension) noexcept;

    char const *Get() const noexcept { return m_text; }

private:
    char m_text[CrashSettings::LongestPrefix + 32];
};

/// How far the report is. Shared with the copy of the process that writes it.
struct CrashProgress
{
    std::atomic<bool> mayBegin{false};
    std::atomic<bool> hasBegun{false}; ///< the text; the frames are complete then
    std::atomic<bool> isTextEnded{false};
    CrashFrames frames;
};

/// Runs in the copy of the process that has crashed, on its stack: writes all that there is to say. Does not
/// return.
[[noreturn]] void WriteCrashReport(Crash const &crash, CrashProgress &progress) noexcept;

/// Runs in the process that has crashed: completes the text, without symbols, when the copy has not, or when
/// there is none. Takes no longer than this many milliseconds.
void CompleteCrashReport(Crash const &crash, CrashProgress &progress, int limit) noexcept;

/// Runs the function in the handler of a crash. A crash inside it ends it.
/// Returns whether it got through.
bool RunGuarded(void (*function)(void *), void *argument) noexcept;

template <class Function>
bool Guarded(Function function) noexcept
{
    return RunGuarded([](void *argument) { (*static_cast<Function *>(argument))(); }, &function);
}

} // namespace vansys::detail

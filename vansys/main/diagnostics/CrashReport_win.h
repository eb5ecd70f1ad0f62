/// @file
/// What is written of a crash, and where. Windows only.
#pragma once

#include "vansys/CrashDumpType.h"

#include "main/diagnostics/CrashText.h"
#include "main/platform/Windows.h"

#include <atomic>
#include <cstddef>
#include <typeinfo>

namespace vansys::detail
{

struct CrashSettings
{
    static constexpr std::size_t LongestPrefix = 4000;

    bool writeText;
    bool writeDump;
    CrashDumpType dumpType;
    wchar_t prefix[LongestPrefix + 1]; ///< of the files' names: "C:\folder\base-"
};

struct Crash
{
    CrashSettings const *settings;
    DWORD thread;
    EXCEPTION_POINTERS *pointers;
    std::type_info const *exception; ///< that nobody has caught, or null
};

/// How far the report is.
struct CrashProgress
{
    std::atomic<bool> hasBegun{false}; ///< the text
    std::atomic<bool> isTextEnded{false};
    std::atomic<bool> isAbandoned{false}; ///< nothing more may be written
};

/// Loads what reports need. False when that is not possible.
bool PrepareCrashReports();

/// Runs on a thread of its own, which may hang when the crashed one holds a lock of the heap.
void WriteCrashReport(Crash const &crash, CrashProgress &progress) noexcept;

/// Runs on the crashed thread when the other is late: gives the text an end.
void CompleteCrashReport(Crash const &crash, CrashProgress &progress) noexcept;

} // namespace vansys::detail

/// @file
/// The symbol handler of the system's debug-help library, for this process. Windows only.
#pragma once

#include "main/diagnostics/Frames.h"
#include "main/platform/Windows.h"

#include <mutex>
#include <string>

#include <dbghelp.h>

namespace vansys::detail
{

/// To be held while functions of the library are called: it does not bear two threads.
std::unique_lock<std::mutex> LockDebugHelp();

/// Starts the symbol handler with this search path of the host's own, unless it has been started before. What
/// it knows of the process's modules is up to date then. Under the lock. Throws `std::bad_alloc`.
bool StartSymbolHandler(std::string const &searchPath);

/// The stack of a thread that stands still, from these registers on. Throws `std::bad_alloc`.
ThreadStack WalkFrom(HANDLE thread, CONTEXT const &context);

} // namespace vansys::detail

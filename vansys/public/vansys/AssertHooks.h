/// @file
/// Where a host takes over the reports of failed assertions.
#pragma once

#include "vansys/Export.h"

/// Process-wide hooks, to be installed once at start-up, before other threads use the library. Setting one
/// later is safe in itself, but an assertion that fails at that moment may go to either hook.
namespace AssertHooks
{

/// Receives the source file, the line and the asserted expression as text. May throw, return (which makes the
/// failure non-fatal) or end the process. Is called on the thread on which the assertion failed.
using Hook = void (*)(char const *file, int line, char const *expression);

/// Installs the hook that `ThrowLogicException` calls; null removes it.
VANSYS_API void SetLogicAssertHook(Hook hook);

/// Stores the hook for the host's own debug assertions; null removes it. Nothing in the library calls it.
VANSYS_API void SetDebugAssertHook(Hook hook);

} // namespace AssertHooks

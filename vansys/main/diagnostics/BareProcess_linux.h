/// @file
/// A process as the kernel makes it, for looking at this one from outside. Linux on x86-64 only.
#pragma once

#include "main/diagnostics/RawSystem_linux.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vansys::detail
{

/// Makes a process that shares the memory of this one but is none of its threads, so that it may attach to
/// them. It runs `function` on the given stack, with the thread's own variables of the calling thread, and
/// ends. It gives no signal when it has ended, and only `wait4` with `__WCLONE` or `__WALL` finds it.
///
/// Returns its id, or an error number with a minus. `flags` are further ones of `clone`, to which those that
/// set and clear an id apply to `id`.
///
/// By the call of the kernel itself: the C library's function is taken for a fork by the thread sanitizer.
RawWord MakeBareProcess(RawWord flags, std::byte *stackEnd, void (*function)(void *) noexcept, void *argument,
                        std::atomic<std::int32_t> *id = nullptr) noexcept;

} // namespace vansys::detail

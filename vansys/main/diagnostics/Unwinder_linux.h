/// @file
/// Unwinder: the frames of a stack from the registers of a thread. x86-64 Linux only.
#pragma once

#include "main/diagnostics/Frames.h"
#include "main/diagnostics/UnwindTable_linux.h"

#include <cstddef>
#include <ucontext.h>

#include <sys/user.h>

namespace vansys::detail
{

/// What a signal handler or a tracer is given.
Registers RegistersOf(ucontext_t const &context) noexcept;
Registers RegistersOf(user_regs_struct const &registers) noexcept;

struct UnwoundFrames
{
    std::size_t count = 0;
    bool isComplete = false; ///< the last frame is the outermost one
};

/// Writes at most `capacity` frames of the stack that the registers belong to, the innermost first. Frames of
/// signal trampolines are left out.
///
/// It goes by the tables of the modules, and by frame pointers where there are none. The stack may be
/// damaged, and the program counter anything: the walk ends where it cannot go on. Allocates nothing, takes
/// no lock, needs about 4 KiB of stack and leaves `errno` alone: for signal handlers, and for a process that
/// shares this one's memory while the thread stands still.
UnwoundFrames Unwind(Registers registers, Frame *frames, std::size_t capacity) noexcept;

} // namespace vansys::detail

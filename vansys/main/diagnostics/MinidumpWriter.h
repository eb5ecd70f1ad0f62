/// @file
/// Writes the state of a process to a file in the format of Windows's minidumps, which debuggers read on any
/// system. Linux only.
#pragma once

#include "vansys/CrashDumpType.h"

#include <csignal>
#include <ucontext.h>

namespace vansys::detail
{

/// A thread that sits in the handler of a signal that its own doing has raised, and what the handler was
/// given.
struct CrashedThread
{
    int id; ///< the kernel's, as `gettid` gives it
    siginfo_t const *signal;
    ucontext_t const *context;
};

/// Writes a dump of the calling process. All its threads stand still meanwhile, the calling one included.
///
/// May be called in the handler of a fatal signal, whatever that has interrupted: it takes no lock that the
/// interrupted code may hold, allocates nothing by `malloc`, and needs about 8 KiB of stack. The work is done
/// by a child that shares the memory of the process and dies with its work; the process sees no `SIGCHLD` of
/// it. Dumps that several threads ask for at the same time are written one after the other.
///
/// With `crashed`, the dump says that the process has ended by that signal, and shows that thread as it was
/// when the signal came. Without, it says that the process was alive.
///
/// The file appears under its name, with access for its owner only, when it is complete: whatever has the
/// name before is replaced then, if it is a file. Returns false on any failure, and leaves nothing behind
/// then. Leaves `errno` alone.
bool WriteOwnMinidump(char const *fileName, CrashDumpType type,
                      CrashedThread const *crashed = nullptr) noexcept;

/// The same of any process that the rights of the calling one reach, but for the calling one itself. The
/// threads of that process may stay frozen until the calling thread ends: call this on a thread, or in a
/// process, that does nothing else. `crashed` points into the calling process. Not for the handler of a
/// signal in a thread that is to live on, but a forked child may call it to look at its parent.
bool WriteMinidump(int processId, char const *fileName, CrashDumpType type,
                   CrashedThread const *crashed = nullptr) noexcept;

} // namespace vansys::detail

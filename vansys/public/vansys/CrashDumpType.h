/// @file
/// CrashDumpType: how much of a process's memory a crash dump holds.
#pragma once

/// What `TStackWalker::WriteCrashDump` and the crash handler write of a process's memory. On Windows the
/// value goes to the system's dump writer as it is, so that any sum of its `MINIDUMP_TYPE` values is good
/// there; on Linux the bits that are not named here mean nothing.
enum class CrashDumpType : int
{
    /// The threads' registers and stacks: enough for call stacks, and small.
    Stacks = 0,
    /// The same, and what lies around each address that is found on a stack: enough to look at the objects
    /// that functions were busy with.
    StacksAndReferencedMemory = 0x40,
};

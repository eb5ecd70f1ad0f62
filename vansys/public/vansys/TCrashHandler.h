/// @file
/// TCrashHandler: what is left of a program that crashes.
#pragma once

#include "vansys/CrashDumpType.h"
#include "vansys/Export.h"

#include <string>

/// Writes a report when the program crashes: a text for people and a minidump for debuggers. A program opts
/// in by installing it; the library never does by itself.
///
///     TCrashHandler::Options options;
///     options.folder = "/var/crash";
///     options.baseName = "server";
///     if (!TCrashHandler::Install(options))
///         ... go on without reports ...
///
///     std::thread(
///         []
///         {
///             TCrashHandler::ThreadScope const scope; // an exhausted stack is reported, too
///             ...
///         });
///
/// **What counts as a crash.** On Linux the signals SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGABRT, whether the
/// program's own doing or somebody else has raised them. On Windows exceptions of the system that nobody
/// handles, and `abort`. An uncaught C++ exception ends in `abort` on both: the report names its type, and
/// has the place that threw it unless destructors were run on the way.
///
/// **The text** has the signal and its reason, the address, process, thread and time, the lines of the
/// crashed thread's call stack as `TStackWalker` gives them out, registers, and the modules. The last line is
/// "end of crash report". Of a stack of thousands of frames, those in the middle are left out, and a line
/// says so. Where symbols cannot be had in time, the line "(not finished)" stands before the last one, and
/// addresses stand for names.
///
/// **Afterwards**, whatever would have happened without this happens: on Linux, the handler that was there
/// before gets the same signal with the same context, and where there was none, the program ends by that
/// signal, with a core dump of the place of the crash where the limits allow one. On Windows, the previous
/// filter is asked. There is one report in the life of a process: should a previous handler keep the program
/// alive, this one is gone.
///
/// **Several threads** that crash together give one report, of the first; the others wait until it is
/// written, at most twice as long as that may take. A crash inside the handler does not begin a second
/// report.
///
/// **What the handler does on Linux** is safe wherever a signal comes: inside `malloc` with its lock held and
/// its memory corrupt, inside the dynamic linker, on an exhausted stack. It allocates nothing and takes no
/// lock. The work is done by a copy of the process, forked without the host's fork handlers and unseen by the
/// host's waiting for its children, in which even a further crash does no harm; this process waits for it
/// for 1.5 seconds altogether. If it cannot be had, or is not done by then, the handler itself writes what
/// can be known without symbols. A process needs memory for that copy, which is little more than its page
/// tables. All this is takes a few milliseconds, and where modules have debugging information, the time to
/// read that of those on the stack.
///
/// **On Windows** the work is done by a thread that `Install` starts, which the crashed thread waits for, 10
/// seconds at most. It uses the system's debug-help library, which allocates memory: with the heap's lock
/// held or the heap corrupt, the report may end with what could be had without.
///
/// **What can be written is written.** A text that cannot go to its file goes to standard error; one whose
/// file cannot grow ends where it has to. A minidump appears under its name when it is complete, or not at
/// all. No free file descriptors are needed.
///
/// Any thread may call these functions at any time.
class VANSYS_API TCrashHandler
{
public:
    struct Options
    {
        /// Where the files go; has to exist when the program crashes. A relative path counts from the current
        /// folder at the time of `Install`. UTF-8 on Windows, any bytes on Linux.
        std::string folder = ".";

        /// The files are named `baseName-PID.txt` and `baseName-PID.dmp`, by the id of the process that
        /// crashes. Files of these names are replaced.
        std::string baseName = "crash";

        bool writeText = true;
        bool writeDump = true;
        CrashDumpType dumpType = CrashDumpType::Stacks;

        /// On Linux: a file descriptor for the text, instead of the file, when it is not negative. Stays
        /// open; a pipe or a terminal that takes nothing loses the text. Without a meaning on Windows.
        int textDescriptor = -1;
    };

    /// Gives a thread of the host's what it takes to report that its stack is exhausted, for as long as the
    /// scope is: on Linux an alternate stack for signals (256 KiB of addresses, of which memory is used by a
    /// crash only) in the place of the one the thread may have, on Windows a reserve on its stack, which
    /// stays until the thread ends. To be left on the thread that entered it, and scopes of a thread inside
    /// out. Independent of `Install`. The thread that calls `Install` has it without.
    class VANSYS_API ThreadScope
    {
    public:
        ThreadScope() noexcept;
        ~ThreadScope();
        ThreadScope(ThreadScope const &) = delete;
        ThreadScope &operator=(ThreadScope const &) = delete;

        /// Whether that worked; false without memory.
        explicit operator bool() const noexcept { return m_stack != nullptr; }

    private:
        void *m_stack;
    };

    /// Begins to handle crashes. False when that is not possible, and nothing has changed then: it is
    /// installed already, the names are longer than 4,000 bytes together, there is no current folder for a
    /// relative one, or no memory.
    [[nodiscard]] static bool Install(Options const &options) noexcept;

    /// Puts back the handlers that were there before `Install`, but for those of signals for which somebody
    /// else has installed another since. Does nothing when none is installed.
    static void Uninstall() noexcept;

    TCrashHandler() = delete;
};

/// @file
/// TStackWalker: the call stacks of the threads of this process, as text.
#pragma once

#include "vansys/CrashDumpType.h"
#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TProcessHandle.h"
#include "vansys/TStackWalkerBase.h"

#include <cstdint>
#include <string>

namespace vansys::detail
{
struct ThreadStack;
}

/// Walks the stacks of threads and gives out a line for each frame: see `TStackWalkerBase` for what a line
/// has.
///
///     class TLogWalker : public TStackWalker
///     {
///     public:
///         using TStackWalker::TStackWalker;
///         void OnOutput(char const *line) override { WriteLog(line); }
///     };
///     TLogWalker(TProcessHandle(-1), GetMyProcessId()).GenerateCallstacksForAllThreads();
///
/// To have the lines in a list, take `TStackWalkerCollector`. To remember where something happened, and to
/// turn it into text only when that is wanted, take `TCapturedStack`.
///
/// **What is left out.** The outermost frame, which is that of the system's code that started the thread.
/// Frames of the walker itself and of signal trampolines. Frames in the sources of memory trackers, which are
/// told by their names: `tmemory.cpp` and `memorytrackingcommunication.cpp`. And everything beyond 16,384
/// frames.
///
/// **Threads.** A walker is for one thread at a time. Walks of several walkers take turns where they stop
/// threads or look up symbols; no lock is held while `OnCallstackEntry` and `OnOutput` run, and no thread is
/// stopped then.
///
/// **Other threads** stand still only for a part of their walk. On Windows, they are suspended while their
/// registers and stacks are copied; the copy is walked by the system's debug-help library, which wants
/// nothing else to use it at the same time. On Linux, they are stopped for the walk, in one of the two ways
/// of `ThreadAccess`. A thread that has not stopped within a second is given up: one second for all threads
/// of a walk together.
///
/// **Failures.** No memory and no file descriptors make a walk return false, and lines that are out may be
/// fewer. What `OnCallstackEntry` and `OnOutput` throw passes through, apart from `std::bad_alloc`.
class VANSYS_API TStackWalker : public TStackWalkerBase
{
public:
    /// The longest name of a symbol that is read, in bytes, with a zero behind it. Longer ones are cut.
    static constexpr int STACKWALK_MAX_NAMELEN = 2048;

    static constexpr int DefaultRecursionDepth = 1000;

    /// How Linux stops another thread. Without a meaning on Windows.
    enum class ThreadAccess
    {
        /// `Attach`, and `Signal` where that is refused.
        Automatic,

        /// By a short-lived process that attaches to the thread as debuggers do. Calls of the system that the
        /// thread waits in go on afterwards, with the exception of those that Linux ends for whoever is
        /// stopped: `epoll_wait`, `semop`, `sigtimedwait`, and calls of sockets that have a time limit, fail
        /// with `EINTR`. No handler runs, and blocked signals do not matter. The host sees neither a child
        /// that has ended nor SIGCHLD. Refused while a debugger is attached, in processes that may not be
        /// dumped, and where the system does not allow `ptrace`. Where it allows it for ancestors only
        /// (Yama), the process names itself with `PR_SET_PTRACER` for the time of the walk, and nobody
        /// afterwards.
        Attach,

        /// By a real-time signal: the highest one that has no handler at the time of the first walk. It keeps
        /// the handler, which restarts calls (`SA_RESTART`) and runs on the alternate stack where the thread
        /// has one. Calls that are never restarted, such as `poll`, `nanosleep` and `epoll_wait`, fail with
        /// `EINTR`; the waits of this library go on. A thread that blocks the signal does not answer.
        Signal
    };

    /// What is known about one frame. What is not is empty, or 0.
    struct CallstackEntry
    {
        std::uintptr_t programCounter = 0; ///< where the thread is, or will be when it returns to this frame
        std::string name;                  ///< of the symbol
        std::string undecoratedName;       ///< the name with its scopes: `core::Parse`
        std::string undecoratedFullName;   ///< with parameters and the result, where they are known
        std::string lineFileName;          ///< the source
        unsigned lineNumber = 0;
        std::string moduleName;      ///< the module's file without the folder
        std::string loadedImageName; ///< the module's file
        std::uintptr_t baseOfImage = 0;
    };

    enum CallstackEntryType
    {
        firstEntry, ///< the innermost frame
        nextEntry,
        lastEntry ///< the outermost frame: it returns to nobody
    };

    /// A walker for the process, which has to be the calling one: either the handle or the id says so. Walks
    /// of another process return false.
    TStackWalker(TProcessHandle process, unsigned processId);

    TStackWalker(TStackWalker const &);
    TStackWalker(TStackWalker &&) noexcept;
    TStackWalker &operator=(TStackWalker const &);
    TStackWalker &operator=(TStackWalker &&) noexcept;
    ~TStackWalker() override;

    /// The folders, each but the last with a `;` behind it, in which the symbol handler looks before all
    /// others. Empty at first. Counts for the first walk or `LoadModules` of the process, and is for Windows:
    /// elsewhere, modules name the files that have their debugging information.
    void SetSymbolSearchPath(std::string path);
    std::string const &GetSymbolSearchPath() const noexcept { return m_symbolSearchPath; }

    /// How many times in a row a function may have called itself from one and the same place. At the next
    /// one, the walk gives out "Recursive function passed the set recursion depth." and ends. 0 and negative
    /// numbers are no limit.
    void SetMaxRecursionDepth(int depth) noexcept { m_maxRecursionDepth = depth; }
    int GetMaxRecursionDepth() const noexcept { return m_maxRecursionDepth; }

    void SetThreadAccess(ThreadAccess access) noexcept { m_threadAccess = access; }
    ThreadAccess GetThreadAccess() const noexcept { return m_threadAccess; }

    /// The stack of the calling thread.
    bool GenerateCallstack() override;

    /// The stack of one thread, which may be the calling one. False, without a line, when there is no such
    /// thread in this process, and when it cannot be stopped.
    virtual bool GenerateCallstack(unsigned threadId);

    /// The stacks of all threads of the process, one after the other. Nothing stands between them: a thread's
    /// first frame has the number 0 and the type `firstEntry`, and `GetWalkedThreadId` tells whose it is. In
    /// the place of a thread's lines there may be the line "(thread N did not answer)"; then the result is
    /// false, as it is when the threads cannot be listed.
    bool GenerateCallstacksForAllThreads() override;

    /// `GenerateCallstacksForAllThreads` when `allThreads` is true, else `GenerateCallstack`.
    virtual bool CallStackWalk(bool allThreads);

    /// Has the modules of the process ready for the look-up of symbols. Every walk does that first. Further
    /// calls take account of modules that were loaded since. False when the symbol handler cannot be started.
    bool LoadModules();

    /// Writes what the threads of a process are doing to a file in the format of Windows's minidumps, which
    /// debuggers, lldb for one, open on any system. `process` and `processId` have to name the same process,
    /// which may be the calling one. Returns 0 on failure. Any thread may call it.
    ///
    /// **Windows:** the debug-help library writes, and its result is returned. It wants nothing else to use
    /// it at the same time. The file is made, in place of one that has its name, before anything is written,
    /// and stays as it is when writing fails.
    ///
    /// **Linux:** the file has the threads with their registers and the innermost 60 KiB of their stacks, the
    /// modules with their build ids, and /proc's files `maps`, `status` and `auxv`. It appears under its name
    /// when it is complete, for its owner only, and replaces a file that has the name; on failure, nothing is
    /// left behind. A back slash in the name is a slash, and a lone unit from U+DC80 to U+DCFF is the byte in
    /// its low half; other lone surrogates are a failure.
    ///
    /// All threads of the process stand still meanwhile, the calling one included; how their calls of the
    /// system go on is as with `ThreadAccess::Attach`. A thread that does not stop within a second is left
    /// out. Another process has to be one that the calling one may attach to as debuggers do. Dumps of the
    /// calling process take turns, and the child that writes them is not seen by the host; where the system
    /// allows attaching for ancestors only (Yama), the process names it with `PR_SET_PTRACER`, and nobody
    /// afterwards.
    static int WriteCrashDump(TProcessHandle process, unsigned processId, TCodeUnit const *fileName,
                              CrashDumpType type);
    static int WriteCrashDump(TProcessHandle process, unsigned processId, TWideTwin const *fileName,
                              CrashDumpType type);

protected:
    /// Makes a line of one frame and gives it to `OnOutput`, unless the frame is the last one, has the
    /// program counter 0 or lies in a source that never appears.
    virtual void OnCallstackEntry(unsigned frameNumber, CallstackEntryType type, CallstackEntry const &entry);

    /// Whose stack is given out now, for overrides of `OnCallstackEntry` and `OnOutput`; 0 between walks.
    unsigned GetWalkedThreadId() const noexcept { return m_walkedThreadId; }

private:
    bool IsOwnProcess() const noexcept;
    bool WalkCallingThread(void const *returnAddress);
    bool WalkOtherThread(unsigned threadId);
    bool WalkAllThreads(void const *returnAddress);
    void GiveOut(vansys::detail::ThreadStack const &stack);

    TProcessHandle m_process;
    unsigned m_processId;
    std::string m_symbolSearchPath;
    int m_maxRecursionDepth = DefaultRecursionDepth;
    ThreadAccess m_threadAccess = ThreadAccess::Automatic;
    unsigned m_walkedThreadId = 0;
};

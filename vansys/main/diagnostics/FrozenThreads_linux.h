/// @file
/// Stops the threads of a process, and lets them go on as if nothing had been. Linux only.
#pragma once

#include "main/diagnostics/RawSystem_linux.h"

#include <sys/user.h>

namespace vansys::detail
{

/// The threads of another process, from `Freeze` on standing still. The kernel restarts the calls that it
/// interrupts for this.
///
/// Only the thread that has called `Freeze` may ask for anything. A thread that does not stop in time is left
/// out, and may stop later: it goes on when the asking thread ends.
class FrozenThreads
{
public:
    explicit FrozenThreads(int process) noexcept : m_process(process) {}
    FrozenThreads(FrozenThreads const &) = delete;
    FrozenThreads &operator=(FrozenThreads const &) = delete;
    ~FrozenThreads() { LetGo(); }

    /// Stops all threads, those too that come into being meanwhile. Waits a second at most for those that do
    /// not stop, or that somebody else has stopped. Returns false where there is no such process, or no
    /// memory.
    bool Freeze() noexcept;

    /// Lets all threads go on.
    void LetGo() noexcept;

    struct Thread
    {
        enum State : int
        {
            Running, ///< asked to stop
            Stopped,
            Gone, ///< ended, or out of reach
        };

        int id;
        State state;
        int signal; ///< was on its way to the thread when that stopped
    };

    /// Those that have not stopped are among them.
    RawArray<Thread> const &Threads() const noexcept { return m_threads; }

    struct Registers
    {
        user_regs_struct general;
        user_fpregs_struct floating;
    };

    /// Of a thread that stands still.
    static bool ReadRegisters(int thread, Registers &registers) noexcept;

private:
    enum class Progress
    {
        Failed,
        None,
        Some,
        InTheWay, ///< somebody else has stopped a thread
    };

    Progress StopNewThreads() noexcept;
    Progress StopThread(int id) noexcept;
    bool AllStand() noexcept;
    bool IsTraced(int id) const noexcept;
    bool IsKnown(int id) noexcept;

    int m_process;
    RawArray<Thread> m_threads;
    std::size_t m_nextKnown = 0;
};

} // namespace vansys::detail

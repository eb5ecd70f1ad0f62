#include "main/diagnostics/BareProcess_linux.h"
#include "main/diagnostics/StoppedThreads_linux.h"

#include <cerrno>
#include <csignal>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

// A thread can be attached to by another process only. The one made here shares the memory of this process,
// so that it costs little and can write its findings where they belong; it shares the thread's own variables,
// too, and so the thread that makes it waits until it has ended. It runs no handlers, and ends without a
// signal to the host.
//
// While it works, any thread may stand still with any lock held, malloc's and the loader's among them:
// whatever it calls allocates nothing and takes no lock.

struct Order
{
    Storages const &storages;
    Clock::TimePoint deadline;
};

/// Attaches to the thread, and asks it to stop, unless that has been done. Returns whether it is going to
/// stop.
bool Attach(StackStorage &storage) noexcept
{
    if (storage.GetState() != StackStorage::Asked)
        return false;
    if (ptrace(PTRACE_SEIZE, storage.ThreadId(), nullptr, nullptr) != 0 ||
        ptrace(PTRACE_INTERRUPT, storage.ThreadId(), nullptr, nullptr) != 0)
    {
        storage.SetState(errno == ESRCH ? StackStorage::Gone : StackStorage::Refused);
        return false;
    }
    return true;
}

StackStorage *Find(Storages const &storages, pid_t threadId) noexcept
{
    for (StackStorage::Pointer const &storage : storages)
        if (storage->ThreadId() == threadId)
            return storage.get();
    return nullptr;
}

/// The thread has stopped, or has ended.
void TakeStack(StackStorage &storage, int status) noexcept
{
    if (!WIFSTOPPED(status))
    {
        storage.SetState(StackStorage::Gone);
        return;
    }
    user_regs_struct registers{};
    if (ptrace(PTRACE_GETREGS, storage.ThreadId(), nullptr, &registers) == 0)
        storage.Answer(RegistersOf(registers));
    // It may have stopped for a signal that has come first, and has that delivered now. Stops that were asked
    // for have an event in the upper half.
    long const signal = status >> 16 == 0 ? WSTOPSIG(status) : 0;
    ptrace(PTRACE_DETACH, storage.ThreadId(), nullptr, signal);
}

/// What the process does. In the end, the kernel detaches it from whatever has not stopped.
void WalkAttached(void *argument) noexcept
{
    Order const &order = *static_cast<Order const *>(argument);
    std::size_t awaited = 0;
    for (StackStorage::Pointer const &storage : order.storages)
        if (Attach(*storage))
            ++awaited;
    while (awaited > 0)
    {
        int status = 0;
        RawWord const stopped = RawCall(SYS_wait4, -1, &status, __WALL | WNOHANG, nullptr);
        if (stopped < 0)
            break;
        if (stopped > 0)
        {
            StackStorage *const storage = Find(order.storages, static_cast<pid_t>(stopped));
            if (!storage || storage->GetState() != StackStorage::Asked)
                continue;
            TakeStack(*storage, status);
            --awaited;
        }
        else if (Clock::Now() >= order.deadline)
            break;
        else
            RawSleepMicroseconds(20);
    }
}

/// Returns when the process has ended. False when there is none.
bool RunProcess(Order &order) noexcept
{
    RawPages const stack(std::size_t{256} << 10);
    if (!stack)
        return false;
    BlockedSignals const blocked;
    constexpr RawWord Flags = CLONE_VFORK | CLONE_FS | CLONE_FILES | CLONE_UNTRACED;
    RawWord const process = MakeBareProcess(Flags, stack.Data() + stack.Size(), &WalkAttached, &order);
    // If the host has a call that asks for all kinds of processes, it may be first.
    if (process > 0)
        RawCall(SYS_wait4, process, nullptr, __WALL, nullptr);
    return process > 0;
}

} // namespace

void WalkByAttaching(Storages const &storages, Clock::TimePoint deadline) noexcept
{
    int const savedError = errno;
    // A process may attach to threads of others just as well.
    for (StackStorage::Pointer const &storage : storages)
        if (!storage->IsOfThread())
            storage->SetState(StackStorage::Gone);
    Order order{storages, deadline};
    bool const couldRun = RunProcess(order);
    if (!couldRun)
        ReplaceState(storages, StackStorage::Asked, StackStorage::Refused);
    // Those that did not stop in time are not asked again.
    ReplaceState(storages, StackStorage::Asked, StackStorage::Silent);
    // Where the system has such a rule, a process says who may attach to it: its descendants from now on.
    if (couldRun && HasState(storages, StackStorage::Refused) &&
        prctl(PR_SET_PTRACER, getpid(), 0, 0, 0) == 0)
    {
        ReplaceState(storages, StackStorage::Refused, StackStorage::Asked);
        RunProcess(order);
        ReplaceState(storages, StackStorage::Asked, StackStorage::Silent);
        prctl(PR_SET_PTRACER, 0, 0, 0, 0);
    }
    errno = savedError;
}

} // namespace vansys::detail

#include "main/diagnostics/StoppedThreads_linux.h"

#include <cerrno>
#include <csignal>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace vansys::detail
{

namespace
{

// A thread that has been asked answers when it gets to it, which may be long after nobody waits for it any
// more. The storage that its signal names stays until then, and serves the next walk of the thread.

/// Storages that threads may still write into. They are never freed at the end of the process.
StackStorage *g_late = nullptr;

/// The signal whose handler answers; 0 before the first walk.
int g_signal = 0;

void AnswerSignal(int, siginfo_t *info, void *context) noexcept
{
    if (info->si_code != SI_QUEUE || info->si_pid != getpid())
        return; // somebody else's
    int const savedError = errno;
    auto &storage = *static_cast<StackStorage *>(info->si_value.sival_ptr);
    // The look at the state takes over what the asking thread has written.
    if (storage.GetState() == StackStorage::Asked)
        storage.Answer(RegistersOf(*static_cast<ucontext_t const *>(context)));
    errno = savedError;
}

bool IsOurs(int signal) noexcept
{
    struct sigaction action
    {
    };
    return signal != 0 && sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) != 0 &&
           action.sa_sigaction == AnswerSignal;
}

/// The signal that asks; 0 when all have handlers of the host's.
int FindSignal() noexcept
{
    if (IsOurs(g_signal))
        return g_signal;
    for (int signal = SIGRTMAX; signal >= SIGRTMIN; --signal)
    {
        struct sigaction action
        {
        };
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
            continue;
        action.sa_sigaction = AnswerSignal;
        action.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
        sigemptyset(&action.sa_mask);
        if (sigaction(signal, &action, nullptr) == 0)
            return signal;
    }
    return 0;
}

/// Asks the thread, and returns 0 or an error number.
int Ask(StackStorage &storage, int signal) noexcept
{
    siginfo_t info{};
    info.si_signo = signal;
    info.si_code = SI_QUEUE;
    info.si_pid = getpid();
    info.si_uid = getuid();
    info.si_value.sival_ptr = &storage;
    storage.SetState(StackStorage::Asked); // which the handler has to find there
    int const savedError = errno;
    long const result = syscall(SYS_rt_tgsigqueueinfo, getpid(), storage.ThreadId(), signal, &info);
    int const error = result == 0 ? 0 : errno;
    errno = savedError;
    return error;
}

/// Unmaps what is of no use any more: the thread has answered, or never will.
void DropLate() noexcept
{
    for (StackStorage **link = &g_late; *link;)
    {
        StackStorage *const storage = *link;
        if (storage->GetState() == StackStorage::Asked && storage->IsOfThread())
        {
            link = &storage->next;
            continue;
        }
        *link = storage->next;
        StackStorage::Unmap()(storage);
    }
}

/// The storage that the thread has been asked to write into before; null when there is none.
StackStorage *TakeLate(pid_t threadId) noexcept
{
    for (StackStorage **link = &g_late; *link; link = &(*link)->next)
    {
        StackStorage *const storage = *link;
        if (storage->ThreadId() != threadId)
            continue;
        *link = storage->next;
        return storage;
    }
    return nullptr;
}

} // namespace

void WalkBySignal(Storages &storages, Clock::TimePoint deadline) noexcept
{
    DropLate();
    g_signal = FindSignal();
    for (StackStorage::Pointer &storage : storages)
    {
        if (storage->GetState() != StackStorage::Asked)
            continue;
        // The signal of then is still on its way.
        if (StackStorage *const late = TakeLate(storage->ThreadId()))
            storage.reset(late);
        else if (int const error = g_signal == 0 ? ENOTSUP : Ask(*storage, g_signal))
            storage->SetState(error == ESRCH ? StackStorage::Gone : StackStorage::Refused);
    }
    for (StackStorage::Pointer &storage : storages)
    {
        if (storage->GetState() != StackStorage::Asked || storage->WaitForAnswer(deadline))
            continue;
        storage->next = g_late;
        g_late = storage.release();
    }
}

} // namespace vansys::detail

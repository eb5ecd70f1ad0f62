#include "main/diagnostics/FrozenThreads_linux.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <string_view>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/wait.h>

namespace vansys::detail
{

namespace
{

constexpr std::int64_t LongestWait = 1000; // milliseconds

/// As the kernel gives out the entries of a folder.
struct Entry
{
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short size;
    unsigned char type;
    char name[1];
};

/// 0 for what is no number: "." and "..".
int ToId(char const *text) noexcept
{
    int number = 0;
    for (; *text >= '0' && *text <= '9' && number < INT_MAX / 10; ++text)
        number = number * 10 + (*text - '0');
    return number;
}

} // namespace

bool FrozenThreads::Freeze() noexcept
{
    std::int64_t const deadline = RawMilliseconds() + LongestWait;
    for (long pause = 20;; pause = std::min(2 * pause, 2000L))
    {
        Progress const progress = StopNewThreads();
        if (progress == Progress::Failed)
            return false;
        // A thread makes another as long as it runs, so the last look at the list comes after all stand
        // still.
        if (AllStand() && progress == Progress::None)
            return true;
        if (RawMilliseconds() >= deadline)
            return true;
        RawSleepMicroseconds(pause);
    }
}

FrozenThreads::Progress FrozenThreads::StopNewThreads() noexcept
{
    RawFile const folder(RawCall(SYS_openat, AT_FDCWD, ProcName("/proc/", m_process, "/task").Get(),
                                 O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder)
        return Progress::Failed;
    Progress progress = Progress::None;
    m_nextKnown = 0;
    for (;;)
    {
        alignas(Entry) char entries[2048];
        RawWord const size = RawCall(SYS_getdents64, folder.Get(), entries, sizeof entries);
        if (size <= 0)
            return size == 0 ? progress : Progress::Failed;
        for (RawWord offset = 0; offset < size;)
        {
            auto const entry = reinterpret_cast<Entry const *>(entries + offset);
            offset += entry->size;
            int const id = ToId(entries + (offset - entry->size) + offsetof(Entry, name));
            if (id == 0 || IsKnown(id))
                continue;
            Progress const ofThread = StopThread(id);
            if (ofThread == Progress::Failed)
                return ofThread;
            progress = std::max(progress, ofThread);
        }
    }
}

/// The kernel lists threads in the order of their making, so that the next one is mostly the next of those
/// known.
bool FrozenThreads::IsKnown(int id) noexcept
{
    auto const isIt = [id](Thread const &thread) { return thread.id == id; };
    if (m_nextKnown >= m_threads.Size() || !isIt(m_threads[m_nextKnown]))
    {
        Thread const *const found = std::find_if(m_threads.begin(), m_threads.end(), isIt);
        if (found == m_threads.end())
            return false;
        m_nextKnown = static_cast<std::size_t>(found - m_threads.begin());
    }
    ++m_nextKnown;
    return true;
}

FrozenThreads::Progress FrozenThreads::StopThread(int id) noexcept
{
    // Room first: a thread that is stopped and then forgotten would not be let go.
    if (!m_threads.Reserve(m_threads.Size() + 1))
        return Progress::Failed;
    RawWord const result = RawCall(SYS_ptrace, PTRACE_SEIZE, id, nullptr, nullptr);
    if (result == -EPERM && IsTraced(id))
        return Progress::InTheWay;
    Thread thread{id, result < 0 ? Thread::Gone : Thread::Running, 0};
    if (result >= 0 && RawCall(SYS_ptrace, PTRACE_INTERRUPT, id, nullptr, nullptr) < 0)
        thread.state = Thread::Gone;
    m_threads.Append(thread);
    return Progress::Some;
}

bool FrozenThreads::IsTraced(int id) const noexcept
{
    RawArray<char> status;
    if (!RawReadFile(ProcName("/proc/", m_process, "/task/", id, "/status").Get(), status))
        return false;
    std::string_view const text(status.begin(), status.Size());
    constexpr std::string_view label = "\nTracerPid:\t";
    std::size_t const tracer = text.find(label);
    return tracer != std::string_view::npos && text.substr(tracer + label.size(), 2) != "0\n";
}

bool FrozenThreads::AllStand() noexcept
{
    bool all = true;
    for (Thread &thread : m_threads)
    {
        if (thread.state != Thread::Running)
            continue;
        int status = 0;
        RawWord const result =
            RawCall(SYS_wait4, thread.id, &status, WNOHANG | __WALL | __WNOTHREAD, nullptr);
        if (result == 0 || result == -EINTR)
        {
            all = false;
        }
        else if (result == thread.id && WIFSTOPPED(status))
        {
            thread.state = Thread::Stopped;
            // Anything but the stop that was asked for is a signal, which the thread has to get in the end.
            thread.signal = status >> 16 == 0 ? WSTOPSIG(status) : 0;
        }
        else
        {
            thread.state = Thread::Gone;
        }
    }
    return all;
}

void FrozenThreads::LetGo() noexcept
{
    for (Thread &thread : m_threads)
        if (thread.state == Thread::Stopped)
        {
            RawCall(SYS_ptrace, PTRACE_DETACH, thread.id, nullptr, thread.signal);
            thread.state = Thread::Gone;
        }
}

bool FrozenThreads::ReadRegisters(int thread, Registers &registers) noexcept
{
    iovec general{&registers.general, sizeof registers.general};
    iovec floating{&registers.floating, sizeof registers.floating};
    return RawCall(SYS_ptrace, PTRACE_GETREGSET, thread, NT_PRSTATUS, &general) >= 0 &&
           RawCall(SYS_ptrace, PTRACE_GETREGSET, thread, NT_PRFPREG, &floating) >= 0;
}

} // namespace vansys::detail

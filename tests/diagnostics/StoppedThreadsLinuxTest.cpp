#include "vansys/TStackWalker.h"

#include "diagnostics/WalkedThread.h"

#include "vansys/TEvent.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <iostream>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <memory>
#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace walked
{

/// What the threads of a test share. Calls that fail count as disturbed.
struct Shared
{
    Shared() { EXPECT_EQ(pipe(ends.data()), 0); }
    ~Shared() { close(ends[0]); }

    void End()
    {
        if (isOver.exchange(true))
            return;
        over.Signal();
        close(ends[1]);
    }

    std::array<int, 2> ends{};
    TEvent over;
    std::atomic<bool> isOver{false};
    std::atomic<int> disturbed{0};
    std::atomic<int> blocking{0};
};

#if defined(__SANITIZE_THREAD__)
constexpr bool HandlersWaitForCalls = true; // of functions that the sanitizer knows, unlike those of events
#else
constexpr bool HandlersWaitForCalls = false;
#endif

void ChangeMask(int how)
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(how, &all, nullptr);
}

[[gnu::noinline]] void Waiting(Shared &shared)
{
    pollfd pipe{shared.ends[0], POLLIN, 0};
    while (HandlersWaitForCalls && !shared.isOver)
        poll(&pipe, 1, -1);
    shared.over.Wait();
    KeepFrame();
}

[[gnu::noinline]] void Spinning(Shared &shared)
{
    while (!shared.isOver)
        KeepFrame();
}

[[gnu::noinline]] void Reading(Shared &shared)
{
    for (char byte = 0; !shared.isOver;)
        shared.disturbed += read(shared.ends[0], &byte, 1) < 0 ? 1 : 0;
}

[[gnu::noinline]] void Polling(Shared &shared)
{
    for (pollfd pipe{shared.ends[0], POLLIN, 0}; !shared.isOver;)
        shared.disturbed += poll(&pipe, 1, -1) < 0 ? 1 : 0;
}

[[gnu::noinline]] void Napping(Shared &shared)
{
    for (timespec const nap{0, 100'000'000}; !shared.isOver;)
        shared.disturbed += nanosleep(&nap, nullptr) < 0 ? 1 : 0;
}

[[gnu::noinline]] void Blocking(Shared &shared)
{
    ChangeMask(SIG_BLOCK);
    ++shared.blocking;
    shared.over.Wait();
    KeepFrame();
}

Shared *g_shared = nullptr;

void OnSignal(int)
{
    Waiting(*g_shared);
}

[[gnu::noinline]] void Handling(Shared &shared)
{
    g_shared = &shared;
    std::signal(SIGUSR1, &OnSignal);
    std::raise(SIGUSR1);
    KeepFrame();
}

} // namespace walked

namespace
{

using Access = TStackWalker::ThreadAccess;
using walked::Shared;

/// A thread in one of the functions above.
struct BusyThread : WalkedThread
{
    BusyThread(Shared &shared, void (*function)(Shared &))
        : WalkedThread([&shared, function] { function(shared); }, [&shared] { shared.End(); })
    {
    }
};

/// Whether this machine lets a process attach to its parent. Asked without the walker.
bool CanAttach()
{
    prctl(PR_SET_PTRACER, getpid(), 0, 0, 0);
    pid_t const child = fork();
    if (child == 0)
        _exit(ptrace(PTRACE_SEIZE, getppid(), nullptr, nullptr) == 0 ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    prctl(PR_SET_PTRACER, 0, 0, 0, 0);
    return status == 0;
}

/// Has the calling thread, and what it starts, get EPERM from the call with this number.
void Forbid(unsigned call)
{
    std::array<sock_filter, 4> program{{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                                        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
                                        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
                                        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)}};
    sock_fprog const filter{static_cast<unsigned short>(program.size()), program.data()};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

class StoppedThreads : public testing::TestWithParam<Access>
{
protected:
    void SetUp() override
    {
        m_walker.SetThreadAccess(GetParam());
        if (GetParam() == Access::Attach && !CanAttach())
            GTEST_SKIP() << "this machine does not let processes attach to others";
    }

    /// Walks until the thread is seen in that function.
    void WalkInto(WalkedThread const &thread, char const *function)
    {
        do
        {
            m_walker.Reset();
            ASSERT_TRUE(m_walker.GenerateCallstack(thread.Id())) << function;
        } while (m_walker.Count(function) == 0);
    }

    RecordingWalker m_walker;
};

std::string NameOf(testing::TestParamInfo<Access> const &test)
{
    char const *const names[] = {"Automatic", "Attach", "Signal"};
    return names[static_cast<int>(test.param)];
}

INSTANTIATE_TEST_SUITE_P(, StoppedThreads, testing::Values(Access::Automatic, Access::Attach, Access::Signal),
                         NameOf);

TEST_P(StoppedThreads, AreSeenFiftyAtATime)
{
    bool const isBySignal = GetParam() == Access::Signal;
    if (walked::HandlersWaitForCalls && isBySignal)
        GTEST_SKIP() << "the thread sanitizer puts handlers off while a thread reads";
    static std::atomic<int> s_childSignals{0};
    s_childSignals = 0;
    std::signal(SIGCHLD, [](int) { ++s_childSignals; });
    struct Kind
    {
        void (*function)(Shared &);
        char const *name;
    } constexpr Kinds[] = {{walked::Waiting, "!walked::Waiting"},   {walked::Reading, "!walked::Reading"},
                           {walked::Polling, "!walked::Polling"},   {walked::Napping, "!walked::Napping"},
                           {walked::Spinning, "!walked::Spinning"}, {walked::Blocking, "!walked::Blocking"}};
    constexpr int PerKind = 9;

    Shared shared;
    std::vector<std::unique_ptr<WalkedThread>> threads;
    for (Kind const &kind : Kinds)
    {
        for (int i = 0; i < PerKind; ++i)
        {
            threads.push_back(std::make_unique<BusyThread>(shared, kind.function));
            if (kind.function != walked::Blocking)
                WalkInto(*threads.back(), kind.name);
        }
    }
    while (shared.blocking < PerKind)
        std::this_thread::yield();
    int const disturbedBefore = shared.disturbed;
    m_walker.Reset();
    auto const start = std::chrono::steady_clock::now();
    bool const result = m_walker.GenerateCallstacksForAllThreads();
    auto const duration = std::chrono::steady_clock::now() - start;

    EXPECT_FALSE(result && isBySignal);
    for (Kind const &kind : Kinds)
        EXPECT_EQ(m_walker.Count(kind.name), isBySignal && kind.function == walked::Blocking ? 0 : PerKind)
            << m_walker.Text();
    EXPECT_EQ(m_walker.Count("(thread " + std::to_string(threads.back()->Id()) + " did not answer)"),
              isBySignal ? 1 : 0);
    EXPECT_EQ(m_walker.Count(" did not answer)"), isBySignal ? PerKind : 0);
    EXPECT_LT(duration, std::chrono::seconds(8)); // one limit for all, and much time for a busy machine
    std::cout << duration / std::chrono::milliseconds(1) << " ms for all threads\n";
    EXPECT_TRUE(GetParam() != Access::Attach || shared.disturbed == disturbedBefore);

    threads.clear();
    EXPECT_EQ(s_childSignals, 0);
    std::signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG | __WALL), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_P(StoppedThreads, AreSeenInHandlersWithoutTheTrampoline)
{
    if (walked::HandlersWaitForCalls && GetParam() == Access::Signal)
        GTEST_SKIP() << "the thread sanitizer runs no handler in a handler";
    Shared shared;
    BusyThread const thread(shared, walked::Handling);
    WalkInto(thread, "!walked::Waiting");
    EXPECT_EQ(m_walker.Count("!walked::Handling"), 1) << m_walker.Text();
    for (char const *const left : {"restore_rt", "sigaction", "clone"}) // the last is the outermost frame
        EXPECT_EQ(m_walker.Count(left), 0) << m_walker.Text();
}

TEST_P(StoppedThreads, AreThoseOfThisProcess)
{
    pid_t const child = fork();
    while (child == 0)
        pause();
    EXPECT_FALSE(m_walker.GenerateCallstack(static_cast<unsigned>(child)));
    EXPECT_TRUE(m_walker.GetCallstack().empty());
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST_P(StoppedThreads, NeedFilesToBeListed)
{
    Shared shared;
    BusyThread const thread(shared, walked::Waiting);
    WalkInto(thread, "!walked::Waiting");
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit const none{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    m_walker.Reset();
    EXPECT_FALSE(m_walker.GenerateCallstacksForAllThreads());
    EXPECT_TRUE(m_walker.GetCallstack().empty());
    EXPECT_TRUE(m_walker.GenerateCallstack(thread.Id()));
    EXPECT_EQ(m_walker.Count("!walked::Waiting"), 1) << m_walker.Text();
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(m_walker.GenerateCallstacksForAllThreads() || GetParam() == Access::Signal);
}

TEST(StoppedThreadsBySignal, MayAnswerLate)
{
    Shared shared;
    std::atomic<bool> isBlocking{false};
    auto const run = [&]
    {
        for (int round = 0; round < 2; ++round)
        {
            walked::ChangeMask(SIG_BLOCK);
            isBlocking = true;
            while (isBlocking)
                usleep(100);
            walked::ChangeMask(SIG_UNBLOCK);
        }
        walked::Waiting(shared);
    };
    WalkedThread const thread(run, [&shared] { shared.End(); });
    RecordingWalker walker;
    walker.SetThreadAccess(Access::Signal);
    for (int round = 0; round < 2; ++round)
    {
        while (!isBlocking)
            usleep(100);
        EXPECT_FALSE(walker.GenerateCallstack(thread.Id()));
        EXPECT_FALSE(walker.GenerateCallstack(thread.Id())); // asks nothing new
        EXPECT_TRUE(walker.GetCallstack().empty());
        isBlocking = false;
    }
    EXPECT_TRUE(walker.GenerateCallstack(thread.Id()));
    EXPECT_FALSE(walker.GetCallstack().empty());
}

TEST(StoppedThreadsInSandboxes, AreAskedBySignalAndReadWithoutCalls)
{
    if (!CanAttach())
        GTEST_SKIP() << "this machine does not let processes attach to others";
    Shared shared;
    BusyThread const thread(shared, walked::Waiting);
    RecordingWalker walker;
    while (walker.Count("!walked::Waiting") == 0)
        walker.GenerateCallstack(thread.Id());
    walker.Reset();
    auto const walk = [&]
    {
        Forbid(SYS_process_vm_readv);
        walker.SetThreadAccess(Access::Attach);
        EXPECT_TRUE(walker.GenerateCallstack(thread.Id()));
        EXPECT_EQ(walker.Count("!walked::Waiting"), 1) << walker.Text();
        Forbid(SYS_ptrace);
        EXPECT_FALSE(walker.GenerateCallstack(thread.Id()));
        walker.SetThreadAccess(Access::Automatic);
        EXPECT_TRUE(walker.GenerateCallstack(thread.Id()));
        EXPECT_EQ(walker.Count("!walked::Waiting"), 2) << walker.Text();
    };
    std::thread(walk).join();
}

} // namespace

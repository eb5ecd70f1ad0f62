// What only Linux has: when the kernel is called, what time it goes by, and what interrupts a wait.

#include "vansys/WaitForEvents.h"

#include "main/platform/Futex.h"

#include "support/FutexCalls.h"
#include "support/SleepingThread.h"
#include "support/StoppedClock.h"
#include "synchronize/LockRows.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <random>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;
using vansys::detail::Clock;
using vansys::detail::FutexWaitUntil;
using vansys::detail::FutexWord;

TEST(Futex, WaitsForChangeOrDeadline)
{
    FutexWord const word{7};
    errno = 12345;
    EXPECT_TRUE(FutexWaitUntil(word, 8, Clock::Now() + 1h)) << "the word is another one";
    EXPECT_FALSE(FutexWaitUntil(word, 7, Clock::Now() - 1s));
    EXPECT_FALSE(FutexWaitUntil(word, 7, Clock::TimePoint(-1s)));
    auto const start = std::chrono::steady_clock::now();
    while (FutexWaitUntil(word, 7, start + 20ms))
        ;
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    EXPECT_EQ(errno, 12345);
}

TEST(Futex, WaitEndsWhenTheClockShowsTheDeadline)
{
    StoppedClock clock;
    auto const semaphore = TSemaphore::Construct(0);
    std::atomic<bool> isOver{false};
    SleepingThread const thread([&] { EXPECT_FALSE(semaphore->TryAcquire(3600'000)), isOver = true; });
    thread.WaitUntilAsleep();
    clock.Advance(59min);
    thread.WaitUntilAsleep();
    EXPECT_FALSE(isOver);
    clock.Advance(1min);
}

/// A sleeper is woken by one call, and leaves nothing behind that makes later calls.
TEST(Futex, IsCalledForSleepersOnly)
{
    LockRows const locks;
    for (LockRow const &row : locks.rows)
    {
        SCOPED_TRACE(row.name);
        auto const countUncontended = [&row]
        {
            FutexCalls const calls;
            for (int i = 0; i < 100; ++i)
                row.take(), row.give(), row.pass();
            return calls.Count();
        };
        EXPECT_EQ(countUncontended(), 0);
        row.take();
        {
            SleepingThread const thread(row.pass);
            thread.WaitUntilAsleep();
            FutexCalls const calls;
            row.give();
            EXPECT_GE(calls.Count(), 1);
        }
        EXPECT_EQ(countUncontended(), 0);
    }
    FutexCalls const calls;
    EXPECT_FALSE(TSemaphore::Construct(0)->TryAcquire(0));
    TEvent event;
    EXPECT_FALSE(WaitForAny({&event}, 0ms));
    event.AddOnSignalCallback(nullptr, [] {});
    event.Signal();
    EXPECT_TRUE(WaitForAny({&event}, 0ms));
    EXPECT_EQ(calls.Count(), 0);
}

namespace
{

std::atomic<int> g_handled{0};
std::atomic<bool> g_isHeld{false}; // keeps threads in the handler

/// Lets an interrupted call of the kernel fail.
void Handle(int)
{
    ++g_handled;
    while (g_isHeld)
        sched_yield();
}

/// Returns when a thread is in the handler once more.
void AwaitInterruption(int before)
{
    while (g_handled == before)
        std::this_thread::yield();
}

/// The signal comes from a timer, as another thread may not be running at that moment.
void PassInterrupted(LockRow const &row, long nanoseconds)
{
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = SIGUSR1;
    event._sigev_un._tid = gettid();
    timer_t timer{};
    timer_create(CLOCK_MONOTONIC, &event, &timer);
    itimerspec const delay = {{}, {0, nanoseconds + 1}};
    timer_settime(timer, 0, &delay, nullptr);
    row.pass();
    timer_delete(timer);
}

} // namespace

/// Interrupted, a thread that waits goes on waiting; and one that is stopped on its way into a lock does not
/// hold it, and must not keep others asleep.
TEST(Futex, InterruptionsNeitherEndNorProlongWaits)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer runs handlers only after the wait";
#endif
    struct sigaction action = {};
    struct sigaction previous = {};
    action.sa_handler = Handle;
    sigaction(SIGUSR1, &action, &previous);
    LockRows const locks;
    std::minstd_rand random(1);
    for (LockRow const &row : locks.rows)
    {
        SCOPED_TRACE(row.name);
        for (int round = 0; round < 15; ++round)
        {
            std::atomic<bool> hasPassed{false};
            row.take();
            int before = g_handled;
            SleepingThread const sleeper([&] { PassInterrupted(row, 3'000'000), hasPassed = true; });
            AwaitInterruption(before);
            sleeper.WaitUntilAsleep();
            EXPECT_FALSE(hasPassed);

            g_isHeld = true;
            before = g_handled;
            std::thread late([&] { PassInterrupted(row, static_cast<long>(random() % 6000)); });
            AwaitInterruption(before);
            row.give();
            for (auto const end = Clock::Now() + 20s; !hasPassed && Clock::Now() < end;)
                std::this_thread::yield();
            EXPECT_TRUE(hasPassed);
            g_isHeld = false;
            late.join();
        }
    }
    sigaction(SIGUSR1, &previous, nullptr);
}

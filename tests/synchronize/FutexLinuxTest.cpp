// What only Linux has: when the kernel is called, and what interrupts a wait.

#include "main/platform/Futex.h"

#include "vansys/TReadWriteLock.h"
#include "vansys/TRecursiveMutex.h"
#include "vansys/TSemaphore.h"

#include "support/FutexCalls.h"
#include "support/SleepingThread.h"
#include "support/StoppedClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <pthread.h>
#include <thread>

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
    SleepingThread const thread(
        [&]
        {
            EXPECT_FALSE(semaphore->TryAcquire(3600'000));
            isOver = true;
        });
    thread.WaitUntilAsleep();
    clock.Advance(1h - 1ns);
    thread.WaitUntilAsleep();
    EXPECT_FALSE(isOver);
    clock.Advance(1ns);
}

TEST(Futex, IsNotCalledWhileNobodyWaits)
{
    TRecursiveMutex mutex;
    TReadWriteLock lock;
    auto const semaphore = TSemaphore::Construct(0);
    FutexCalls const calls;
    for (int i = 0; i < 1000; ++i)
    {
        mutex.Lock();
        mutex.Lock();
        mutex.Unlock();
        mutex.Unlock();
        lock.Lock();
        lock.LockRead();
        lock.Unlock();
        lock.UnlockRead();
        semaphore->Release();
        semaphore->Acquire();
        semaphore->TryAcquire(0);
    }
    EXPECT_EQ(calls.Count(), 0);
}

/// A sleeper is woken by one call, and leaves nothing behind that makes later calls.
TEST(Futex, IsCalledForSleepersOnly)
{
    TRecursiveMutex mutex;
    TReadWriteLock lock;
    auto const semaphore = TSemaphore::Construct(0);
    auto const release = [&] { semaphore->Release(); };
    auto const acquire = [&] { semaphore->Acquire(); };
    struct
    {
        char const *name;
        std::function<void()> take;
        std::function<void()> give;
        std::function<void()> wait;
    } const rows[] = {
        {"mutex", [&] { mutex.Lock(); }, [&] { mutex.Unlock(); },
         [&]
         {
             mutex.Lock();
             mutex.Unlock();
         }},
        {"reader behind writer", [&] { lock.Lock(); }, [&] { lock.Unlock(); },
         [&]
         {
             lock.LockRead();
             lock.UnlockRead();
         }},
        {"writer behind writer", [&] { lock.Lock(); }, [&] { lock.Unlock(); },
         [&]
         {
             lock.Lock();
             lock.Unlock();
         }},
        {"writer behind reader", [&] { lock.LockRead(); }, [&] { lock.UnlockRead(); },
         [&]
         {
             lock.Lock();
             lock.Unlock();
         }},
        {"semaphore", [] {}, release, acquire},
    };
    for (auto const &row : rows)
    {
        row.take();
        {
            SleepingThread const thread(row.wait);
            thread.WaitUntilAsleep();
            FutexCalls const calls;
            row.give();
            EXPECT_GE(calls.Count(), 1) << row.name;
        }
        FutexCalls const calls;
        row.take();
        row.give();
        EXPECT_EQ(calls.Count(), 0) << row.name;
        semaphore->TryAcquire();
    }
}

namespace
{

/// Interrupts threads. The handler counts, and lets interrupted calls of the kernel fail.
class Interruptions : public testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "the sanitizer runs handlers only after the wait";
#endif
        s_handled = 0;
        struct sigaction action = {};
        action.sa_handler = [](int) { ++s_handled; };
        sigaction(SIGUSR1, &action, &m_previous);
    }

    void TearDown() override
    {
        sigaction(SIGUSR1, &m_previous, nullptr);
    }

    static void Interrupt(pthread_t thread)
    {
        int const before = s_handled;
        pthread_kill(thread, SIGUSR1);
        while (s_handled == before)
            std::this_thread::yield();
    }

private:
    inline static std::atomic<int> s_handled;

    struct sigaction m_previous = {};
};

} // namespace

TEST_F(Interruptions, DoNotEndWaits)
{
    TRecursiveMutex mutex;
    auto const semaphore = TSemaphore::Construct(0);
    struct
    {
        std::function<void()> wait;
        std::function<void()> end;
    } const rows[] = {
        {[&] { semaphore->Acquire(); }, [&] { semaphore->Release(); }},
        {[&] { mutex.Lock(), mutex.Unlock(); }, [&] { mutex.Unlock(); }},
    };
    mutex.Lock();
    for (auto const &row : rows)
    {
        std::atomic<pthread_t> id{};
        std::atomic<bool> isOver{false};
        SleepingThread const thread(
            [&]
            {
                id = pthread_self();
                row.wait();
                isOver = true;
            });
        for (int i = 0; i < 5; ++i)
        {
            thread.WaitUntilAsleep();
            Interrupt(id);
        }
        thread.WaitUntilAsleep();
        EXPECT_FALSE(isOver);
        row.end();
    }
}

TEST_F(Interruptions, DoNotMoveDeadlines)
{
    auto const semaphore = TSemaphore::Construct(0);
    auto const start = Clock::Now();
    std::atomic<bool> isOver{false};
    std::thread thread(
        [&]
        {
            EXPECT_FALSE(semaphore->TryAcquire(100));
            isOver = true;
            isOver.wait(true); // stays to be interrupted
        });
    while (!isOver)
        Interrupt(thread.native_handle());
    EXPECT_GE(Clock::Now() - start, 100ms);
    isOver = false;
    isOver.notify_one();
    thread.join();
}

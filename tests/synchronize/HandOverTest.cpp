// Who falls asleep at the very moment at which a lock becomes free must not sleep on. The threads of these
// tests wait for each other without sleeping, as to be woken takes longer than what is timed here.

#include "vansys/TReadWriteLock.h"
#include "vansys/TRecursiveMutex.h"

#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace
{

void WaitFor(std::atomic<int> const &number, int value)
{
    while (number != value)
        std::this_thread::yield();
}

/// Spends a random time: any in which another thread reaches a lock, watches it and falls asleep over it.
void PassTime(std::minstd_rand &random)
{
    using Clock = std::chrono::steady_clock;
    auto const end = Clock::now() + std::chrono::nanoseconds(random() % 5000);
    while (Clock::now() < end)
        ;
}

/// A lock that is held while one thread, or two, come for it.
class HandOver : public testing::Test
{
protected:
    using Action = std::function<void()>;

    struct Row
    {
        char const *name;
        Action take;
        Action give;
        Action first;
        Action second;
    };

    Action const lockMutex = [this] { m_mutex.Lock(); };
    Action const unlockMutex = [this] { m_mutex.Unlock(); };
    Action const lockRead = [this] { m_lock.LockRead(); };
    Action const unlockRead = [this] { m_lock.UnlockRead(); };
    Action const lockWrite = [this] { m_lock.Lock(); };
    Action const unlockWrite = [this] { m_lock.Unlock(); };
    Action const passMutex = [this] { lockMutex(), unlockMutex(); };
    Action const passReading = [this] { lockRead(), unlockRead(); };
    Action const passWriting = [this] { lockWrite(), unlockWrite(); };

    std::vector<Row> const rows = {
        {"mutex", lockMutex, unlockMutex, passMutex, passMutex},
        {"reader and writer behind writer", lockWrite, unlockWrite, passReading, passWriting},
        {"writers behind writer", lockWrite, unlockWrite, passWriting, passWriting},
        {"writers behind reader", lockRead, unlockRead, passWriting, passWriting},
    };

private:
    TRecursiveMutex m_mutex;
    TReadWriteLock m_lock;
};

} // namespace

TEST_F(HandOver, WhoFallsAsleepIsWoken)
{
    constexpr int Rounds = 3000;
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.name);
        std::atomic<int> taken{0};
        std::atomic<int> passed{0};
        std::thread other(
            [&]
            {
                for (int round = 1; round <= Rounds; ++round)
                {
                    WaitFor(taken, round);
                    row.first();
                    passed = round;
                }
            });
        std::minstd_rand random(1);
        for (int round = 1; round <= Rounds; ++round)
        {
            row.take();
            taken = round;
            PassTime(random);
            row.give();
            WaitFor(passed, round);
        }
        other.join();
    }
}

TEST_F(HandOver, WhoSleepsIsNotForgottenForOneWhoComesLater)
{
    for (Row const &row : rows)
    {
        SCOPED_TRACE(row.name);
        std::minstd_rand random(1);
        for (int round = 0; round < 15; ++round)
        {
            std::atomic<int> isFirstAsleep{0};
            row.take();
            std::thread second(
                [&]
                {
                    WaitFor(isFirstAsleep, 1);
                    row.second();
                });
            {
                SleepingThread const first(row.first);
                first.WaitUntilAsleep();
                isFirstAsleep = 1;
                PassTime(random);
                row.give();
            }
            second.join();
        }
    }
}

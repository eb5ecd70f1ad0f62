// Who falls asleep at the very moment at which a lock becomes free must not sleep on.

#include "synchronize/LockRows.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace
{

/// Does not sleep, as to be woken takes longer than what is timed here.
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

} // namespace

TEST(HandOver, WhoFallsAsleepIsWokenAndSeesWhatWasDone)
{
    constexpr int Rounds = 2000;
    LockRows const locks;
    for (LockRow const &row : locks.rows)
    {
        SCOPED_TRACE(row.name);
        std::atomic<int> taken{0};
        std::atomic<int> passed{0};
        int written = 0; // plain: the thread sanitizer sees whether the lock orders it, as nothing else does
        std::thread other(
            [&]
            {
                for (int round = 1; round <= Rounds; ++round)
                {
                    WaitFor(taken, round);
                    row.pass();
                    EXPECT_EQ(written, round);
                    passed = round;
                }
            });
        std::minstd_rand random(1);
        for (int round = 1; round <= Rounds; ++round)
        {
            row.take();
            taken.store(round, std::memory_order_relaxed);
            PassTime(random);
            written = round;
            row.give();
            WaitFor(passed, round);
        }
        other.join();
    }
}

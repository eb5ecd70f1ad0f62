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
template <class Condition>
void SpinUntil(Condition condition)
{
    while (!condition())
        std::this_thread::yield();
}

} // namespace

TEST(HandOver, WhoFallsAsleepIsWokenAndSeesWhatWasDone)
{
    constexpr int Rounds = 2000;
    using Clock = std::chrono::steady_clock;
    std::minstd_rand random(1);
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
                    SpinUntil([&] { return taken == round; });
                    row.pass();
                    EXPECT_EQ(written, round);
                    passed = round;
                }
            });
        for (int round = 1; round <= Rounds; ++round)
        {
            row.take();
            taken.store(round, std::memory_order_relaxed);
            // Any time in which another thread reaches a lock, watches it and falls asleep over it.
            auto const end = Clock::now() + std::chrono::nanoseconds(random() % 5000);
            SpinUntil([&] { return Clock::now() >= end; });
            written = round;
            row.give();
            SpinUntil([&] { return passed == round; });
        }
        other.join();
    }
}

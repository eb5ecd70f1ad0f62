#include "vansys/TRecursiveMutex.h"

#include "support/LockAccess.h"
#include "support/SleepingThread.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <vector>

TEST(TRecursiveMutex, IsHeldUntilTheLastUnlock)
{
    TRecursiveMutex mutex(12345);
    mutex.Lock();
    EXPECT_TRUE(mutex.TryLock());
    mutex.LockRead();
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock_shared());
    for (int depth = 5; depth > 0; --depth)
    {
        EXPECT_EQ(AccessElsewhere(mutex), "") << depth;
        if (depth % 2)
            mutex.Unlock();
        else
            mutex.UnlockRead();
    }
    EXPECT_EQ(AccessElsewhere(mutex), "read write");
    EXPECT_TRUE(mutex.TryLock()) << "who let go of it is not taken for its owner";
    mutex.Unlock();
    EXPECT_EQ(AccessElsewhere(mutex), "read write");
}

TEST(TRecursiveMutex, SleepersAreWoken)
{
    TRecursiveMutex mutex;
    std::vector<int> order;
    {
        std::unique_lock guard(mutex);
        auto const work = [&]
        {
            std::scoped_lock const both(mutex, mutex);
            order.push_back(2);
        };
        SleepingThread const threads[] = {SleepingThread(work), SleepingThread(work), SleepingThread(work)};
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        order.push_back(1);
        guard.unlock();
    }
    EXPECT_EQ(order, (std::vector{1, 2, 2, 2}));
}

TEST(TRecursiveMutexStress, ExcludesAtAnyDepth)
{
    TRecursiveMutex mutex;
    int shared = 0; // plain: two threads at a time would lose counts, and the thread sanitizer sees them
    std::atomic<int> rounds{0};
    RunStress(4,
              [&](StressRandom &random)
              {
                  auto const depth = static_cast<int>(random() % 4 + 1);
                  for (int i = 0; i < depth; ++i)
                  {
                      if (random() % 2 || !mutex.TryLock())
                          mutex.Lock();
                      ++shared;
                  }
                  shared -= depth - 1;
                  for (int i = 0; i < depth; ++i)
                      mutex.Unlock();
                  ++rounds;
              });
    EXPECT_EQ(shared, rounds);
}

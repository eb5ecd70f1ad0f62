#include "vansys/TRecursiveMutex.h"

#include "support/SleepingThread.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

namespace
{

/// What `TryLock` returns on another thread, which unlocks at once.
bool CanLockElsewhere(TRecursiveMutex &mutex)
{
    return std::async(std::launch::async,
                      [&mutex]
                      {
                          bool const isLocked = mutex.TryLock();
                          if (isLocked)
                              mutex.Unlock();
                          return isLocked;
                      })
        .get();
}

} // namespace

TEST(TRecursiveMutex, IsHeldUntilTheLastUnlock)
{
    TRecursiveMutex mutex(12345);
    EXPECT_TRUE(CanLockElsewhere(mutex));
    mutex.Lock();
    EXPECT_TRUE(mutex.TryLock());
    mutex.LockRead();
    mutex.lock();
    EXPECT_TRUE(mutex.try_lock_shared());
    for (int depth = 5; depth > 0; --depth)
    {
        EXPECT_FALSE(CanLockElsewhere(mutex)) << depth;
        if (depth % 2)
            mutex.Unlock();
        else
            mutex.UnlockRead();
    }
    EXPECT_TRUE(CanLockElsewhere(mutex));
    EXPECT_TRUE(mutex.TryLock()) << "who let go of it is not taken for its owner";
    mutex.Unlock();
    EXPECT_TRUE(CanLockElsewhere(mutex));
}

TEST(TRecursiveMutex, FitsTheStandardGuards)
{
    TRecursiveMutex first;
    TRecursiveMutex second;
    {
        std::scoped_lock const both(first, second);
        std::lock_guard const guard(first);
        std::shared_lock const reader(second);
        std::unique_lock const tried(second, std::try_to_lock);
        EXPECT_TRUE(tried.owns_lock());
        EXPECT_FALSE(CanLockElsewhere(first));
        EXPECT_FALSE(CanLockElsewhere(second));
    }
    EXPECT_TRUE(CanLockElsewhere(first));
    EXPECT_TRUE(CanLockElsewhere(second));
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
                      if (random() % 2)
                          mutex.Lock();
                      else
                          while (!mutex.TryLock())
                              std::this_thread::yield();
                      ++shared;
                  }
                  shared -= depth - 1;
                  for (int i = 0; i < depth; ++i)
                      mutex.Unlock();
                  ++rounds;
              });
    EXPECT_EQ(shared, rounds);
    EXPECT_TRUE(CanLockElsewhere(mutex));
}

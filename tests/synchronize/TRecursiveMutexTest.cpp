#include "vansys/TRecursiveMutex.h"

#include "support/LockAccess.h"

#include <gtest/gtest.h>

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
        depth % 2 ? mutex.Unlock() : mutex.UnlockRead();
    }
    EXPECT_EQ(AccessElsewhere(mutex), "read write");
    EXPECT_TRUE(mutex.TryLock()) << "who let go of it is not taken for its owner";
    mutex.Unlock();
    EXPECT_EQ(AccessElsewhere(mutex), "read write");
}

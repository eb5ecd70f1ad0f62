#include "vansys/TReadWriteLock.h"
#include "vansys/VantrelException.h"

#include "support/LockAccess.h"
#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

TEST(TReadWriteLock, NestsAsStated)
{
    TReadWriteLock lock(4000);
    using Step = bool (*)(TReadWriteLock &);
    Step const read = [](TReadWriteLock &target) { return target.LockRead(), true; };
    Step const unread = [](TReadWriteLock &target) { return target.UnlockRead(), true; };
    Step const tryRead = [](TReadWriteLock &target) { return target.try_lock_shared(); };
    Step const write = [](TReadWriteLock &target) { return target.Lock(), true; };
    Step const unwrite = [](TReadWriteLock &target) { return target.Unlock(), true; };
    Step const tryWrite = [](TReadWriteLock &target) { return target.try_lock(); };
    struct
    {
        Step step;
        bool result;
        char const *elsewhere;
    } const rows[] = {
        {read, true, "read"},
        {tryWrite, false, "read"}, // no upgrade
        {tryRead, true, "read"},
        {unread, true, "read"},
        {unread, true, "read write"},
        {write, true, ""},
        {tryWrite, true, ""},
        {tryRead, true, ""},
        {tryWrite, false, ""}, // would wait for its own reader
        {unread, true, ""},
        {write, true, ""},
        {unwrite, true, ""},
        {unwrite, true, ""},
        {read, true, ""},
        {unwrite, true, "read"},   // the writer leaves before its reader
        {tryWrite, false, "read"}, // not taken for the owner any more
        {unread, true, "read write"},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.step(lock), row.result);
        EXPECT_EQ(AccessElsewhere(lock), row.elsewhere);
    }
}

TEST(TReadWriteLock, WritersWaitForTheLastReaderAndKeepNobodyOutMeanwhile)
{
    TReadWriteLock lock;
    std::atomic<int> written{0};
    lock.LockRead();
    lock.LockRead();
    auto const write = [&]
    {
        std::scoped_lock const guard(lock);
        ++written;
    };
    SleepingThread const threads[] = {SleepingThread(write), SleepingThread(write)};
    for (SleepingThread const &thread : threads)
        thread.WaitUntilAsleep();
    EXPECT_EQ(AccessElsewhere(lock), "read");
    lock.UnlockRead();
    EXPECT_EQ(AccessElsewhere(lock), "read");
    EXPECT_EQ(written, 0);
    lock.UnlockRead();
}

TEST(TReadWriteLock, LimitsAreAssertionsThatTakeNothing)
{
    constexpr int MaxLocks = 65534;
    struct
    {
        void (TReadWriteLock::*take)();
        void (TReadWriteLock::*give)();
        bool (TReadWriteLock::*tryTake)();
        char const *failure;
    } const rows[] = {
        {&TReadWriteLock::LockRead, &TReadWriteLock::UnlockRead, &TReadWriteLock::try_lock_shared,
         "vansys/main/synchronize/TLocks:253: "
         "m_readerCount < std::numeric_limits<decltype(m_readerCount)>::max()"},
        {&TReadWriteLock::Lock, &TReadWriteLock::Unlock, &TReadWriteLock::try_lock,
         "vansys/main/synchronize/TLocks:232: "
         "m_writerCount < std::numeric_limits<decltype(m_writerCount)>::max()"},
    };
    for (auto const &row : rows)
    {
        SCOPED_TRACE(row.failure);
        TReadWriteLock lock;
        {
            RecordedAssertions assertions;
            for (int i = 0; i < MaxLocks; ++i)
                (lock.*row.take)();
            EXPECT_TRUE(assertions.Take().empty());
            (lock.*row.take)();
            EXPECT_EQ(assertions.Take(), std::vector<std::string>{row.failure});
            EXPECT_FALSE((lock.*row.tryTake)());
            EXPECT_TRUE(assertions.Take().empty());
        }
        EXPECT_THROW((lock.*row.take)(), VantrelException);
        for (int i = 0; i < MaxLocks; ++i)
            (lock.*row.give)();
        EXPECT_EQ(AccessElsewhere(lock), "read write");
    }
}

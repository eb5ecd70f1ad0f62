#include "vansys/TReadWriteLock.h"
#include "vansys/VantrelException.h"

#include "support/LockAccess.h"
#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <shared_mutex>
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
        char const *name;
        Step step;
        bool result;
        char const *elsewhere;
    } const rows[] = {
        {"first reader", read, true, "read"},
        {"no upgrade", tryWrite, false, "read"},
        {"second reader", tryRead, true, "read"},
        {"second reader leaves", unread, true, "read"},
        {"first reader leaves", unread, true, "read write"},
        {"writer", write, true, ""},
        {"nested writer", tryWrite, true, ""},
        {"reader nested in it", tryRead, true, ""},
        {"would wait for its own reader", tryWrite, false, ""},
        {"reader leaves", unread, true, ""},
        {"another nested writer", write, true, ""},
        {"leaves", unwrite, true, ""},
        {"nested writer leaves", unwrite, true, ""},
        {"reader nested in the writer", read, true, ""},
        {"and one more", read, true, ""},
        {"writer leaves before its readers", unwrite, true, "read"},
        {"not taken for the owner any more", tryWrite, false, "read"},
        {"reader leaves", unread, true, "read"},
        {"last reader leaves", unread, true, "read write"},
    };
    for (auto const &row : rows)
    {
        EXPECT_EQ(row.step(lock), row.result) << row.name;
        EXPECT_EQ(AccessElsewhere(lock), row.elsewhere) << row.name;
    }
}

TEST(TReadWriteLock, WritersWaitForTheLastReaderAndKeepNobodyOutMeanwhile)
{
    TReadWriteLock lock;
    std::vector<std::string> order;
    lock.LockRead();
    lock.LockRead();
    {
        auto const write = [&]
        {
            std::scoped_lock const guard(lock);
            order.emplace_back("writer");
        };
        SleepingThread const first(write);
        SleepingThread const second(write);
        first.WaitUntilAsleep();
        second.WaitUntilAsleep();
        EXPECT_EQ(AccessElsewhere(lock), "read");
        lock.UnlockRead();
        order.emplace_back("last reader");
        lock.UnlockRead();
    }
    EXPECT_EQ(order, (std::vector<std::string>{"last reader", "writer", "writer"}));
}

TEST(TReadWriteLock, AllWaitForTheWriter)
{
    TReadWriteLock lock;
    std::atomic<int> inside{0};
    lock.Lock();
    {
        auto const read = [&]
        {
            std::shared_lock const guard(lock);
            ++inside;
        };
        auto const write = [&]
        {
            std::lock_guard const guard(lock);
            ++inside;
        };
        SleepingThread const threads[] = {SleepingThread(read), SleepingThread(write), SleepingThread(read),
                                          SleepingThread(write)};
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        EXPECT_EQ(inside, 0);
        lock.Unlock();
    }
    EXPECT_EQ(inside, 4);
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

/// Writers change two numbers that readers must find equal, with all kinds of nesting and waiting mixed.
TEST(TReadWriteLockStress, ReadersSeeWholeWrites)
{
    TReadWriteLock lock;
    int left = 0; // plain, as the other: the thread sanitizer sees a reader and a writer at a time
    int right = 0;
    std::atomic<int> writes{0};
    auto const write = [&] { ++left, ++right, ++writes; };
    RunStress(4,
              [&](StressRandom &random)
              {
                  auto const kind = random() % 8;
                  if (kind < 2)
                  {
                      lock.Lock();
                      std::shared_lock const reader(lock);
                      write();
                      int const written = left;
                      lock.Unlock();
                      EXPECT_EQ(left, written) << "another writer came between";
                  }
                  else if (kind < 4)
                  {
                      if (std::unique_lock const guard(lock, std::try_to_lock); guard)
                          write();
                  }
                  else
                  {
                      std::shared_lock const guard(lock);
                      std::shared_lock const nested(lock, std::try_to_lock);
                      EXPECT_EQ(left, right);
                  }
              });
    EXPECT_EQ(left, writes);
}

#include "vansys/TReadWriteLock.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

namespace
{

constexpr int MaxLocks = 65534;

struct Access
{
    bool read;
    bool write;

    friend bool operator==(Access left, Access right)
    {
        return left.read == right.read && left.write == right.write;
    }
    friend std::ostream &operator<<(std::ostream &out, Access access)
    {
        return out << (access.read ? "read" : "-") << ' ' << (access.write ? "write" : "-");
    }
};

constexpr Access Everything{true, true};
constexpr Access ReadOnly{true, false};
constexpr Access Nothing{false, false};

/// What another thread may do at this moment.
Access AccessElsewhere(TReadWriteLock &lock)
{
    return std::async(std::launch::async,
                      [&lock]
                      {
                          Access access{};
                          access.read = lock.try_lock_shared();
                          if (access.read)
                              lock.UnlockRead();
                          access.write = lock.try_lock();
                          if (access.write)
                              lock.Unlock();
                          return access;
                      })
        .get();
}

} // namespace

TEST(TReadWriteLock, NestsAsStated)
{
    TReadWriteLock lock(4000);
    using Step = void (*)(TReadWriteLock &);
    Step const lockRead = [](TReadWriteLock &target) { target.LockRead(); };
    Step const unlockRead = [](TReadWriteLock &target) { target.UnlockRead(); };
    Step const lockWrite = [](TReadWriteLock &target) { target.Lock(); };
    Step const unlockWrite = [](TReadWriteLock &target) { target.Unlock(); };
    struct
    {
        char const *name;
        Step step;
        Access expected;
    } const rows[] = {
        {"first reader", lockRead, ReadOnly},
        {"second reader", lockRead, ReadOnly},
        {"second reader leaves", unlockRead, ReadOnly},
        {"first reader leaves", unlockRead, Everything},
        {"writer", lockWrite, Nothing},
        {"nested writer", lockWrite, Nothing},
        {"reader nested in it", lockRead, Nothing},
        {"reader leaves", unlockRead, Nothing},
        {"nested writer leaves", unlockWrite, Nothing},
        {"reader nested in the writer", lockRead, Nothing},
        {"and one more", lockRead, Nothing},
        {"writer leaves before its readers", unlockWrite, ReadOnly},
        {"reader leaves", unlockRead, ReadOnly},
        {"last reader leaves", unlockRead, Everything},
    };
    for (auto const &row : rows)
    {
        row.step(lock);
        EXPECT_EQ(AccessElsewhere(lock), row.expected) << row.name;
    }
}

TEST(TReadWriteLock, TryFormsOnTheThreadThatHoldsIt)
{
    TReadWriteLock lock;
    lock.LockRead();
    EXPECT_FALSE(lock.try_lock()) << "no upgrade";
    EXPECT_TRUE(lock.try_lock_shared());
    lock.UnlockRead();
    lock.UnlockRead();
    EXPECT_TRUE(lock.try_lock());
    EXPECT_TRUE(lock.try_lock());
    EXPECT_TRUE(lock.try_lock_shared());
    EXPECT_FALSE(lock.try_lock()) << "would wait for its own reader";
    lock.UnlockRead();
    lock.Unlock();
    EXPECT_EQ(AccessElsewhere(lock), Nothing);
    lock.Unlock();
    EXPECT_EQ(AccessElsewhere(lock), Everything);
}

TEST(TReadWriteLock, FitsTheStandardGuards)
{
    TReadWriteLock first;
    TReadWriteLock second;
    {
        std::shared_lock const reader(first);
        std::shared_lock const tried(first, std::try_to_lock);
        EXPECT_TRUE(tried.owns_lock());
        EXPECT_EQ(AccessElsewhere(first), ReadOnly);
    }
    {
        std::scoped_lock const both(first, second);
        std::lock_guard const guard(first);
        EXPECT_EQ(AccessElsewhere(first), Nothing);
        EXPECT_EQ(AccessElsewhere(second), Nothing);
    }
    EXPECT_EQ(AccessElsewhere(first), Everything);
    EXPECT_EQ(AccessElsewhere(second), Everything);
}

TEST(TReadWriteLock, WriterWaitsForTheLastReaderAndKeepsNobodyOutMeanwhile)
{
    TReadWriteLock lock;
    std::vector<std::string> order;
    lock.LockRead();
    lock.LockRead();
    {
        auto const write = [&](char const *name)
        {
            return [&lock, &order, name]
            {
                lock.Lock();
                order.emplace_back(name);
                lock.Unlock();
            };
        };
        SleepingThread first(write("writer"));
        SleepingThread second(write("writer"));
        first.WaitUntilAsleep();
        second.WaitUntilAsleep();
        EXPECT_TRUE(AccessElsewhere(lock).read) << "a writer that waits has no preference";
        lock.LockRead();
        lock.UnlockRead();
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
    std::atomic<bool> isWritten{false};
    lock.Lock();
    {
        auto const read = [&]
        {
            lock.LockRead();
            EXPECT_TRUE(isWritten);
            ++inside;
            lock.UnlockRead();
        };
        auto const write = [&]
        {
            lock.Lock();
            EXPECT_TRUE(isWritten);
            ++inside;
            lock.Unlock();
        };
        SleepingThread const threads[] = {SleepingThread(read), SleepingThread(write), SleepingThread(read),
                                          SleepingThread(write)};
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        EXPECT_EQ(inside, 0);
        isWritten = true;
        lock.Unlock();
    }
    EXPECT_EQ(inside, 4);
}

TEST(TReadWriteLock, LimitsAreAssertionsThatTakeNothing)
{
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
        EXPECT_EQ(AccessElsewhere(lock), Everything);
    }
}

/// Writers change two numbers that readers must find equal, with all kinds of nesting and waiting mixed.
TEST(TReadWriteLockStress, ReadersSeeWholeWrites)
{
    TReadWriteLock lock;
    struct
    {
        int left = 0;
        int right = 0;
    } shared; // plain: the thread sanitizer sees a reader and a writer at a time
    std::atomic<int> writes{0};

    auto const write = [&]
    {
        ++shared.left;
        ++shared.right;
        ++writes;
    };
    auto const read = [&] { EXPECT_EQ(shared.left, shared.right); };
    std::vector<std::function<void()>> const actions = {
        [&]
        {
            std::lock_guard const guard(lock);
            write();
        },
        [&]
        {
            std::lock_guard const guard(lock);
            std::lock_guard const nested(lock);
            std::shared_lock const reader(lock);
            write();
        },
        [&]
        {
            lock.Lock();
            lock.LockRead();
            write();
            int const written = shared.left;
            lock.Unlock();
            EXPECT_EQ(shared.left, written) << "another writer came between";
            lock.UnlockRead();
        },
        [&]
        {
            if (std::unique_lock const guard(lock, std::try_to_lock); guard)
                write();
        },
        [&]
        {
            std::shared_lock const guard(lock);
            read();
        },
        [&]
        {
            std::shared_lock const guard(lock);
            std::shared_lock const nested(lock);
            read();
        },
        [&]
        {
            if (std::shared_lock const guard(lock, std::try_to_lock); guard)
                read();
        },
    };
    RunStress(4, [&](StressRandom &random) { actions[random() % actions.size()](); });
    EXPECT_EQ(shared.left, writes);
    EXPECT_EQ(AccessElsewhere(lock), Everything);
}

#include "vansys/TSemaphore.h"
#include "vansys/TSemaphoreScope.h"
#include "vansys/VantrelException.h"

#include "support/RecordedAssertions.h"
#include "support/SleepingThread.h"
#include "support/Stress.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace
{

using SemaphorePtr = RefCntPtr<TSemaphore, RefCntObject>;
using ScopePtr = RefCntPtr<TSemaphoreScope, RefCntObject>;

constexpr unsigned int MaxUnits = 2147483647;

#if defined(_WIN32)
constexpr char InvalidCount[] = "87";  // ERROR_INVALID_PARAMETER
constexpr char TooManyUnits[] = "298"; // ERROR_TOO_MANY_POSTS
#else
constexpr char InvalidCount[] = "22"; // EINVAL
constexpr char TooManyUnits[] = "75"; // EOVERFLOW
#endif

/// Takes all units that there are, and returns their number.
int Drain(SemaphorePtr const &semaphore)
{
    int units = 0;
    while (semaphore->TryAcquire())
        ++units;
    return units;
}

template <class Function>
void ExpectFailure(Function function, std::string const &operation, std::string const &error)
{
    try
    {
        function();
        ADD_FAILURE() << operation << " does not fail";
    }
    catch (VantrelException const &exception)
    {
        std::string const start = "TSemaphore::" + operation + ": error=";
        EXPECT_EQ(exception.GetMessagesFront(), (start + error).c_str());
        EXPECT_EQ(exception.GetRedactedMessages(), std::list<TStringCore>{(start + "%1").c_str()});
    }
}

} // namespace

TEST(TSemaphore, CountsUnits)
{
    SemaphorePtr const semaphore = TSemaphore::Construct(2);
    EXPECT_EQ(semaphore->UseCount(), 1);
    semaphore->Acquire();
    EXPECT_TRUE(semaphore->TryAcquire(TSemaphore::NoTimeout));
    EXPECT_FALSE(semaphore->TryAcquire(0));
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(semaphore->TryAcquire(20));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    std::thread([&] { semaphore->Release(); }).join();
    EXPECT_TRUE(semaphore->TryAcquire(1000));
    EXPECT_EQ(Drain(TSemaphore::Construct(0)), 0);
    EXPECT_EQ(Drain(TSemaphore::Construct(3)), 3);
}

TEST(TSemaphore, ReleaseWakesEachKindOfWait)
{
    SemaphorePtr const semaphore = TSemaphore::Construct(0);
    std::atomic<int> acquired{0};
    {
        SleepingThread const threads[] = {
            SleepingThread([&] { semaphore->Acquire(), ++acquired; }),
            SleepingThread([&] { acquired += semaphore->TryAcquire(TSemaphore::NoTimeout); }),
            SleepingThread([&] { acquired += semaphore->TryAcquire(TSemaphore::NoTimeout - 1); }),
        };
        for (SleepingThread const &thread : threads)
            thread.WaitUntilAsleep();
        EXPECT_EQ(acquired, 0);
        for (std::size_t i = 0; i < std::size(threads); ++i)
            semaphore->Release();
    }
    EXPECT_EQ(acquired, 3);
    EXPECT_EQ(Drain(semaphore), 0);
}

TEST(TSemaphore, LimitsAreExceptions)
{
    for (unsigned int const count : {MaxUnits + 1, ~0u})
        ExpectFailure([count] { TSemaphore::Construct(count); }, "Construct", InvalidCount);
    SemaphorePtr const full = TSemaphore::Construct(MaxUnits);
    ExpectFailure([&] { full->Release(); }, "Release", TooManyUnits);
    full->Acquire();
    full->Release();
    ExpectFailure([&] { full->Release(); }, "Release", TooManyUnits);
}

TEST(TSemaphoreScope, HoldsOneUnit)
{
    SemaphorePtr const semaphore = TSemaphore::Construct(2);
    {
        ScopePtr const first = new TSemaphoreScope(semaphore);
        ScopePtr second = new TSemaphoreScope(semaphore, 0);
        ScopePtr const third = new TSemaphoreScope(semaphore, 1);
        EXPECT_TRUE(first->IsAcquired());
        EXPECT_TRUE(second->IsAcquired());
        EXPECT_FALSE(third->IsAcquired());
        EXPECT_EQ(semaphore->UseCount(), 3);
        first->Reset();
        EXPECT_FALSE(first->IsAcquired());
        EXPECT_EQ(semaphore->UseCount(), 2);
        first->Reset();
        third->Reset();
        EXPECT_EQ(Drain(semaphore), 1);
        std::thread other([own = std::move(second)]() mutable { own.reset(); });
        semaphore->Acquire(); // what it was handed to gives back
        other.join();
    }
    EXPECT_EQ(Drain(semaphore), 0);
    EXPECT_EQ(semaphore->UseCount(), 1);
}

TEST(TSemaphoreScope, FailuresLeaveItEmptyOrFull)
{
    EXPECT_THROW(new TSemaphoreScope(nullptr), VantrelException);
    EXPECT_THROW(new TSemaphoreScope(nullptr, 1), VantrelException);
    {
        RecordedAssertions assertions;
        EXPECT_FALSE(ScopePtr(new TSemaphoreScope(nullptr))->IsAcquired());
        EXPECT_FALSE(ScopePtr(new TSemaphoreScope(nullptr, 1))->IsAcquired());
        EXPECT_EQ(assertions.Take(),
                  std::vector<std::string>(2, "vansys/public/vansys/ReferenceCount:361: m_ptr"));
    }
    SemaphorePtr const semaphore = TSemaphore::Construct(MaxUnits);
    ScopePtr scope = new TSemaphoreScope(semaphore);
    semaphore->Release();
    EXPECT_THROW(scope->Reset(), VantrelException);
    EXPECT_TRUE(scope->IsAcquired());
    scope.reset(); // must not end the program
    EXPECT_EQ(semaphore->UseCount(), 1);
}

/// Threads pass in and out with all kinds of waits. Never more are inside than there are units, and in the
/// end all units are there.
TEST(TSemaphoreStress, UnitsAreConserved)
{
    constexpr int Units = 2;
    SemaphorePtr const semaphore = TSemaphore::Construct(Units);
    std::atomic<int> inside{0};
    std::atomic<bool> isOverfull{false};
    RunStress(4,
              [&](StressRandom &random)
              {
                  if (random() % 2)
                      semaphore->Acquire();
                  else if (!semaphore->TryAcquire(static_cast<unsigned int>(random() % 3)))
                      return;
                  if (++inside > Units)
                      isOverfull = true;
                  --inside;
                  semaphore->Release();
              });
    EXPECT_FALSE(isOverfull);
    EXPECT_EQ(Drain(semaphore), Units);
}

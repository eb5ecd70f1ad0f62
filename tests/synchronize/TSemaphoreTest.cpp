#include "vansys/TSemaphore.h"
#include "vansys/TSemaphoreScope.h"
#include "vansys/VantrelException.h"

#include "support/FailureMessage.h"
#include "support/RecordedAssertions.h"

#include <gtest/gtest.h>

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
constexpr char InvalidCount[] = "TSemaphore::Construct: error=87"; // ERROR_INVALID_PARAMETER
constexpr char TooManyUnits[] = "TSemaphore::Release: error=298";  // ERROR_TOO_MANY_POSTS
#else
constexpr char InvalidCount[] = "TSemaphore::Construct: error=22"; // EINVAL
constexpr char TooManyUnits[] = "TSemaphore::Release: error=75";   // EOVERFLOW
#endif

/// Takes all units that there are, and returns their number.
int Drain(SemaphorePtr const &semaphore)
{
    int units = 0;
    while (semaphore->TryAcquire())
        ++units;
    return units;
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
    EXPECT_EQ(Drain(semaphore), 0);
}

TEST(TSemaphore, LimitsAreExceptions)
{
    for (unsigned int const count : {MaxUnits + 1, ~0u})
        EXPECT_EQ(FailureMessage<VantrelException>([count] { TSemaphore::Construct(count); }), InvalidCount);
    SemaphorePtr const full = TSemaphore::Construct(MaxUnits);
    auto const release = [&full] { full->Release(); };
    EXPECT_EQ(FailureMessage<VantrelException>(release), TooManyUnits);
    full->Acquire();
    full->Release();
    EXPECT_EQ(FailureMessage<VantrelException>(release), TooManyUnits);
}

TEST(TSemaphoreScope, HoldsOneUnit)
{
    SemaphorePtr const semaphore = TSemaphore::Construct(2);
    {
        ScopePtr const first = new TSemaphoreScope(semaphore);
        ScopePtr second = new TSemaphoreScope(semaphore, 0);
        ScopePtr const third = new TSemaphoreScope(semaphore, 1);
        EXPECT_TRUE(first->IsAcquired() && second->IsAcquired() && !third->IsAcquired());
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

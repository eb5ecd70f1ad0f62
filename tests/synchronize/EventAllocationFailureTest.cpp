#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/WaitForEvents.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>

TEST(EventAllocationFailure, ConstructorsReleaseWhatTheyBuilt)
{
    std::function<void()> const operations[] = {
        [] { TEvent const built(true); },
        [] { TCountdownEvent const built(1); },
        [] { TCancelEvent const built; },
    };
    for (auto const &operation : operations)
        EXPECT_GE(failEachAllocation([] {}, operation, [] {}), 1);
}

TEST(EventAllocationFailure, CallbacksAndChildrenStayAsTheyWere)
{
    using Child = RefCntPtr<TCancelEvent, RefCntObject>;
    TCancelEvent event;
    TEvent set(true);
    int runs = 0;
    std::optional<Child> child;
    std::function<void()> const operations[] = {
        [&] { event.AddOnSignalCallback(&runs, nullptr); },
        [&] { event.AddOnSignalCallback(&child, nullptr); },
        [&] {
            WaitForAll({&set, &event}, std::chrono::milliseconds(0));
        },
        [&] { event.Add(*child); },
    };
    for (auto const &operation : operations)
    {
        int const failures = failEachAllocation(
            [&]
            {
                event.RemoveOnSignalCallback(&child);
                event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
                child.emplace(new TCancelEvent);
            },
            operation,
            [&]
            {
                runs = 0;
                event.Signal();
                event.Reset();
                EXPECT_EQ(runs, 1);
                EXPECT_FALSE((*child)->IsSet());
            });
        EXPECT_GE(failures, 1);
    }
}

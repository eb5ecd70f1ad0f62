#include "vansys/TCancelEvent.h"
#include "vansys/TCountdownEvent.h"
#include "vansys/TEvent.h"
#include "vansys/WaitForEvents.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

TEST(EventAllocationFailure, LeavesCallbacksAndChildrenAsTheyWere)
{
    using Child = RefCntPtr<TCancelEvent, RefCntObject>;
    TCancelEvent event;
    TEvent set(true);
    int runs = 0;
    std::optional<Child> child;
    auto const prepare = [&]
    {
        event.RemoveOnSignalCallback(&child);
        event.AddOnSignalCallback(&runs, [&runs] { ++runs; });
        child.emplace(new TCancelEvent);
    };
    auto const check = [&]
    {
        runs = 0;
        event.Signal();
        event.Reset();
        EXPECT_EQ(runs, 1);
        EXPECT_FALSE((*child)->IsSet());
    };
    std::function<void()> const operations[] = {
        [] { TEvent const built(true); },
        [] { TCountdownEvent const built(1); },
        [] { TCancelEvent const built; },
        [&] { event.AddOnSignalCallback(&runs, nullptr); },
        [&] { event.AddOnSignalCallback(&child, nullptr); },
        [&] {
            WaitForAll({&set, &event}, {});
        },
        [&] { event.Add(*child); },
    };
    for (auto const &operation : operations)
        EXPECT_GE(failEachAllocation(prepare, operation, check), 1);
}

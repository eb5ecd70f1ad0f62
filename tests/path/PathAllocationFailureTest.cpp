#include "vansys/TPathCore.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>

TEST(PathAllocationFailure, LeavesPathsAsTheyWere)
{
    TStringCore const text = u"\\a name\\that is\\too long to be inline.txt\\";
    TPathCore const other = text;
    TPathCore path, copy;
    int failures = 0;
    auto const check = [&](std::function<void()> const &change)
    {
        failures += failEachAllocation([&] { copy = path = TPathCore(u"C:") / text; }, change,
                                       [&] { EXPECT_TRUE(PathEqualExact()(path, TPathCore(u"C:") + text)); });
    };
    check([&] { path.Append(other); });
    check([&] { path.Append(path); });
    check([&] { path.Concat(other); });
    check([&] { path.RemoveFilename(); });
    check([&] { path.RemoveExtension(); });
    check([&] { path.ReplaceExtension(u"x"); });
    check([&] { path.Swap(path); });
    check([&] { TPathCore(other).Swap(path); });
    check([&] { path = TPathCore(text.constData()); });
    check([&] { path = path / other; });
    check([&] { path = TPathCore::fromVector(path.toVector()); });
    check([&] { path = path.Parent().NativeLongPath(); });
    EXPECT_GE(failures, 14) << "the failures must reach the library";
}

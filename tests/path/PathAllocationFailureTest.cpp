#include "vansys/TPathCore.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <functional>

TEST(PathAllocationFailure, LeavesPathsAsTheyWere)
{
    TStringCore const text = u"\\a name\\that is\\too long to be inline.txt\\";
    TPathCore const other = text;
    std::function<void(TPathCore &)> const changes[] = {[&](auto &p) { p.Append(other); },
                                                        [](auto &p) { p.Append(p); },
                                                        [&](auto &p) { p.Concat(other); },
                                                        [](auto &p) { p.RemoveFilename(); },
                                                        [](auto &p) { p.RemoveExtension(); },
                                                        [](auto &p) { p.ReplaceExtension(u"x"); },
                                                        [&](auto &p)
                                                        {
                                                            TPathCore q = other;
                                                            p.Swap(q);
                                                        },
                                                        [](auto &p) { p.Swap(p); },
                                                        [&](auto &p) { p = TPathCore(text); },
                                                        [&](auto &p) { p = TPathCore(text.constData()); },
                                                        [&](auto &p) { p = p / other; },
                                                        [&](auto &p)
                                                        { p = TPathCore::fromVector(p.toVector()); },
                                                        [](auto &p) { p = p.Parent(); },
                                                        [](auto &p) { p = p.NativeLongPath(); }};
    int failures = 0;
    for (auto const &change : changes)
    {
        TPathCore path;
        TPathCore copy;
        auto const prepare = [&] { copy = path = TPathCore(u"C:") / text; };
        auto const check = [&]
        { EXPECT_TRUE(PathEqualExact()(path, copy) && copy == TPathCore(u"C:") + text); };
        failures += failEachAllocation(
            prepare, [&] { change(path); }, check);
    }
    EXPECT_GE(failures, 14) << "the failures must reach the library";
}

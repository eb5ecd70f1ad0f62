/// @file
/// Where texts differ.
///
/// Like the vectors that it uses, everything here is local to the file that includes it.
#pragma once

#include "main/vansys/string/UnitVector.h"

namespace vansys::detail
{

namespace
{

/// A way to compare text, as algorithms need to know it: `Key` stands for a unit, and two units are the same
/// when their keys are.
struct Exactly
{
    static TCodeUnit Key(TCodeUnit unit) noexcept { return unit; }

    static bool IsSame(TCodeUnit a, TCodeUnit b) noexcept { return a == b; }

    /// The lanes in which eight units differ.
    static std::uint32_t Differences(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        return LaneBits(LoadUnits(a) == LoadUnits(b)) ^ AllLanes;
    }

    /// How many units from the start on are the same, in large steps; 0 is always right.
    static int EqualPrefix(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
    {
        constexpr int Step = 4 * LanesOfVector;
        auto const equal = [&](int i) { return LoadUnits(a + i) == LoadUnits(b + i); };
        int i = 0;
        while (count - i >= Step &&
               LaneBits(equal(i) & equal(i + LanesOfVector) & equal(i + 2 * LanesOfVector) &
                        equal(i + 3 * LanesOfVector)) == AllLanes)
            i += Step;
        return i;
    }
};

/// The position of the first units that differ; `count` when there are none.
template <class Way>
int FirstDifference(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
{
    int i = Way::EqualPrefix(a, b, count);
    for (; count - i >= LanesOfVector; i += LanesOfVector)
    {
        if (std::uint32_t const bits = Way::Differences(a + i, b + i))
            return i + FirstLane(bits);
    }
    if (i < count && count >= LanesOfVector)
    {
        // One more vector ends with the text. What it begins with is known to be equal.
        i = count - LanesOfVector;
        std::uint32_t const bits = Way::Differences(a + i, b + i);
        return bits ? i + FirstLane(bits) : count;
    }
    while (i < count && Way::Key(a[i]) == Way::Key(b[i]))
        ++i;
    return i;
}

} // namespace

} // namespace vansys::detail

/// @file
/// The search for exact text in raw memory, for each kind of processor.
#pragma once

#include "main/platform/CpuFeatures.h"
#include "main/vansys/string/TwoWaySearch.h"
#include "vansys/TCodeUnit.h"

namespace vansys::detail
{

/// Looks for a needle, which is not empty. The result is the first place where it begins, by the direction,
/// or null. Takes time in proportion to the text passed and the needle. Nothing outside of either is read.
using FindText = TCodeUnit const *(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                   int needleLength) noexcept;

/// How to look for what.
struct TextSearches
{
    TCodeUnit const *(*findUnit)(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit unit) noexcept;

    // The needle is not longer than the text.

    FindText *findFirst;
    FindText *findLast;
};

/// Those that run on every processor.
TextSearches BaselineTextSearches() noexcept;

/// The fastest that a processor with `features` can run.
TextSearches FastestTextSearches(CpuFeatures features) noexcept;

/// The fastest of this processor.
TextSearches const &OwnTextSearches() noexcept;

/// The searches by which those above go on where vectors would take more than linear time.
template <Direction direction>
TCodeUnit const *FindExactlyTwoWay(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                   int needleLength) noexcept;

} // namespace vansys::detail

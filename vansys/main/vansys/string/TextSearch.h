/// @file
/// The search for exact text in raw memory, for each kind of processor.
#pragma once

#include "main/platform/CpuFeatures.h"
#include "vansys/TCodeUnit.h"

namespace vansys::detail
{

/// How to look for what. The results are the place of the first match, or null. Nothing outside of the text
/// and the needle is read.
struct TextSearches
{
    TCodeUnit const *(*findUnit)(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit unit) noexcept;

    /// The needle has two units or more, and is not longer than the text.
    TCodeUnit const *(*findText)(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                 int needleLength) noexcept;
};

/// Those that run on every processor.
TextSearches PortableTextSearches() noexcept;

/// The fastest that a processor with `features` can run.
TextSearches FastestTextSearches(CpuFeatures features) noexcept;

/// The fastest of this processor.
TextSearches const &OwnTextSearches() noexcept;

} // namespace vansys::detail

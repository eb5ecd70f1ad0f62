/// @file
/// Part of the x86 code behind `FastestTextSearches`.
#pragma once

#include "main/vansys/string/TextSearch.h"

namespace vansys::detail
{

/// The searches for processors with AVX2 and BMI1.
TextSearches Avx2TextSearches() noexcept;

} // namespace vansys::detail

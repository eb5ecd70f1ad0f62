#include "vansys/TextSearch.h"

#include "vansys/TextSearchAvx2_x86.h"
#include "vansys/TextSearchVector_x86.h"

namespace vansys::detail
{

TextSearches FastestTextSearches(CpuFeatures features) noexcept
{
    return features.avx2 ? Avx2TextSearches() : SearchesByVector<Sse2Vector>();
}

} // namespace vansys::detail

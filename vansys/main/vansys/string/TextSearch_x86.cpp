#include "main/vansys/string/TextSearch.h"

#include "main/vansys/string/TextSearchAvx2_x86.h"

namespace vansys::detail
{

TextSearches FastestTextSearches(CpuFeatures features) noexcept
{
    return features.avx2 ? Avx2TextSearches() : BaselineTextSearches();
}

} // namespace vansys::detail

#include "main/vansys/string/TextSearch.h"

namespace vansys::detail
{

TextSearches FastestTextSearches(CpuFeatures) noexcept
{
    return BaselineTextSearches();
}

} // namespace vansys::detail

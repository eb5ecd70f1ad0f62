#include "main/vansys/string/TextSearch.h"

#include <algorithm>

namespace vansys::detail
{

namespace
{

TCodeUnit const *FindUnitPortably(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit unit) noexcept
{
    TCodeUnit const *const match = std::find(text, end, unit);
    return match == end ? nullptr : match;
}

TCodeUnit const *FindTextPortably(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                  int needleLength) noexcept
{
    TCodeUnit const *const match = std::search(text, end, needle, needle + needleLength);
    return match == end ? nullptr : match;
}

} // namespace

TextSearches PortableTextSearches() noexcept
{
    return {FindUnitPortably, FindTextPortably};
}

TextSearches const &OwnTextSearches() noexcept
{
    // The processor is asked once, by whichever thread comes first.
    static TextSearches const s_searches = FastestTextSearches(DetectCpuFeatures());
    return s_searches;
}

} // namespace vansys::detail

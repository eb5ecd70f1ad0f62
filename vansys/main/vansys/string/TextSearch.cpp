#include "main/vansys/string/TextSearch.h"

#include "main/vansys/string/TextSearchVector.h"

namespace vansys::detail
{

TextSearches BaselineTextSearches() noexcept
{
    return SearchesByVector<BytesOfVector>();
}

TextSearches const &OwnTextSearches() noexcept
{
    // The processor is asked once, by whichever thread comes first.
    static TextSearches const s_searches = FastestTextSearches(DetectCpuFeatures());
    return s_searches;
}

template <Direction direction>
TCodeUnit const *FindExactlyTwoWay(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                   int needleLength) noexcept
{
    using Text = DirectedText<direction>;
    return TwoWaySearch<direction, Exactly>(Text(needle, needle + needleLength)).Find(Text(text, end));
}

template FindText FindExactlyTwoWay<Direction::Forwards>;
template FindText FindExactlyTwoWay<Direction::Backwards>;

} // namespace vansys::detail

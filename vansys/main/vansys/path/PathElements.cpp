#include "vansys/PathElements.h"

#include "main/vansys/path/PathAccess.h"
#include "main/vansys/path/PathText.h"
#include "main/vansys/string/UnitVector.h"

#include <algorithm>
#include <utility>

using namespace vansys::detail;

namespace
{

constexpr std::uint64_t AllBits = ~std::uint64_t{0};

/// A bit for each of eight units at two places that is a separator, those of the first place in the lower
/// byte.
std::uint32_t SeparatorsAt(TCodeUnit const *first, TCodeUnit const *second) noexcept
{
    UnitVector const sought = Spread(Separator);
    // What a comparison is true of is not ASCII.
    return OtherThanAscii(LoadUnits(first) == sought, LoadUnits(second) == sought);
}

/// A bit for each unit that is a separator, of 64 units at most.
std::uint64_t Separators(TCodeUnit const *units, int count) noexcept
{
    std::uint64_t result = 0;
    int i = 0;
    if (count < LanesOfVector)
    {
        for (; i < count; ++i)
            result |= std::uint64_t{units[i] == Separator} << i;
        return result;
    }
    for (; count - i >= 2 * LanesOfVector; i += 2 * LanesOfVector)
        result |= std::uint64_t{SeparatorsAt(units + i, units + i + LanesOfVector)} << i;
    if (i < count)
    {
        // The last vector ends with the text, and may overlap what is known.
        int const last = count - LanesOfVector;
        int const first = std::min(i, last);
        std::uint64_t const bits = SeparatorsAt(units + first, units + last);
        result |= (bits & 0xFF) << first | bits >> LanesOfVector << last;
    }
    return result;
}

/// The bits from `position` on, where it is counted from the lowest.
std::uint64_t BitsFrom(int position) noexcept
{
    if (position >= 64)
        return 0;
    return position <= 0 ? AllBits : AllBits << position;
}

std::uint64_t BitAt(int position) noexcept
{
    return position >= 0 && position < 64 ? std::uint64_t{1} << position : 0;
}

/// The begins and the ends among the units from `base` on.
[[gnu::always_inline]] inline std::pair<std::uint64_t, std::uint64_t> EdgesAt(PathText text,
                                                                              int base) noexcept
{
    int const rootNameLength = text.RootNameLength();
    bool const hasRootDirectory = text.IsSeparatorAt(rootNameLength);
    int const rootPathLength = rootNameLength + hasRootDirectory;

    // The units of names. A name begins where the unit before it is of none, and ends the other way round.
    TCodeUnit const *const units = text.Units() + base;
    int const count = std::min(text.Length() - base, 64);
    std::uint64_t const names =
        ~Separators(units, count) & BitsFrom(rootPathLength - base) & ~BitsFrom(count);
    bool const isInName = base > rootPathLength && units[-1] != Separator;
    std::uint64_t const before = names << 1 | std::uint64_t{isInName};
    std::pair edges(names & ~before, ~names & before);

    // The root name and the root directory are elements without a separator in between.
    if (rootNameLength > 0)
    {
        edges.first |= BitAt(-base);
        edges.second |= BitAt(rootNameLength - base);
    }
    if (hasRootDirectory)
    {
        edges.first |= BitAt(rootNameLength - base);
        edges.second |= BitAt(rootPathLength - base);
    }
    return edges;
}

} // namespace

PathElements::PathElements(TPathCore const &path) noexcept
{
    PathText const text(PathAccess::Text(path));
    auto const [begins, ends] = EdgesAt(text, 0);
    m_text = {text.Units(), text.Length()};
    m_first = {begins, ends};
}

PathElements::Edges PathElements::edgesAt(Text text, int base) noexcept
{
    auto const [begins, ends] = EdgesAt(PathText(text.units, text.length), base);
    return {begins, ends};
}

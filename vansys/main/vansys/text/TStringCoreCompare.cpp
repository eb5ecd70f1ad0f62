// Comparison of text by code unit, with and without regard to case.

#include "vansys/TStringCore.h"

#include "main/vansys/string/UnitVector.h"
#include "main/vansys/text/CaseFolding.h"

#include <algorithm>
#include <limits>
#include <type_traits>

using vansys::StringFunctions;
using namespace vansys::detail;

namespace
{

/// What the algorithms need to know of a way to compare: `key` of a unit, and where keys differ.
struct ExactUnits
{
    static TCodeUnit key(TCodeUnit unit) noexcept { return unit; }

    /// The lanes in which eight units differ.
    static std::uint32_t differences(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        return LaneBits(LoadUnits(a) == LoadUnits(b)) ^ AllLanes;
    }

    /// How many units from the start on are equal, in steps of 32.
    static int equalPrefix(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
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

struct FoldedUnits
{
    static TCodeUnit key(TCodeUnit unit) noexcept { return FoldUnit(unit); }

    static std::uint32_t differences(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        UnitVector const aUnits = LoadUnits(a);
        UnitVector const bUnits = LoadUnits(b);
        std::uint32_t const bits = LaneBits(foldAscii(aUnits) == foldAscii(bUnits)) ^ AllLanes;
        if (bits == 0 || AreAscii(aUnits | bUnits))
            return bits;
        return areEqualByTable(a, b) ? 0 : differencesByUnit(a, b);
    }

    static int equalPrefix(TCodeUnit const *, TCodeUnit const *, int) noexcept { return 0; }

private:
    static UnitVector foldAscii(UnitVector units) noexcept
    {
        return units | (AreBetween(units, 'A', 'Z') & AsciiCaseBit);
    }

    /// Whether eight units are equal for all that the table knows yet. There is no branch for each of them,
    /// as texts in which this is so tend to be long.
    static bool areEqualByTable(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        CharacterTable const &table = CharacterTable::selected();
        std::uint32_t differences = 0;
        std::uint32_t unknown = 0;
        for (int i = 0; i < LanesOfVector; ++i)
        {
            std::uint32_t const aFolded = table.foldedIfKnown(a[i]);
            std::uint32_t const bFolded = table.foldedIfKnown(b[i]);
            differences |= aFolded ^ bFolded;
            unknown |= aFolded - 1; // sets the upper bits when that was 0
        }
        return differences == 0 && unknown <= 0xFFFF;
    }

    static std::uint32_t differencesByUnit(TCodeUnit const *a, TCodeUnit const *b) noexcept
    {
        return LaneBits(MapUnits(a, key) == MapUnits(b, key)) ^ AllLanes;
    }
};

/// The position of the first units whose keys differ; `count` when there are none.
template <class Units>
int FirstDifference(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
{
    int i = Units::equalPrefix(a, b, count);
    for (; count - i >= LanesOfVector; i += LanesOfVector)
    {
        if (std::uint32_t const bits = Units::differences(a + i, b + i))
            return i + FirstLane(bits);
    }
    if (i < count && count >= LanesOfVector)
    {
        // One more vector ends with the text. What it begins with is known to be equal.
        i = count - LanesOfVector;
        std::uint32_t const bits = Units::differences(a + i, b + i);
        return bits ? i + FirstLane(bits) : count;
    }
    while (i < count && Units::key(a[i]) == Units::key(b[i]))
        ++i;
    return i;
}

template <class Units>
int CompareBy(TCodeUnit const *a, int aLength, TCodeUnit const *b, int bLength) noexcept
{
    int const common = std::min(aLength, bLength);
    int const i = a == b ? common : FirstDifference<Units>(a, b, common);
    if (i < common)
        return Units::key(a[i]) < Units::key(b[i]) ? -1 : 1;
    return (aLength > bLength) - (aLength < bLength);
}

int CompareUnits(TCodeUnit const *a, int aLength, TCodeUnit const *b, int bLength,
                 StringFunctions::CaseSensitivity sensitivity) noexcept
{
    return sensitivity == StringFunctions::CaseInsensitive ? CompareBy<FoldedUnits>(a, aLength, b, bLength)
                                                           : CompareBy<ExactUnits>(a, aLength, b, bLength);
}

/// The number of elements before the zero, or `limit` when there are more. Null is the empty text.
template <class Unit>
int LengthUpTo(Unit const *text, int limit) noexcept
{
    int length = 0;
    while (text && length < limit && text[length] != Unit{0})
        ++length;
    return length;
}

/// Measures and compares piece by piece, so that the work is in proportion to what is equal, however long the
/// texts are.
template <class CountLeft>
int CompareZeroTerminated(TCodeUnit const *a, TCodeUnit const *b, CountLeft countLeft,
                          StringFunctions::CaseSensitivity sensitivity) noexcept
{
    constexpr int FirstPiece = 32;
    constexpr int LargestPiece = 4096;

    if (a == b)
        return 0;
    for (int piece = FirstPiece;; piece = std::min(2 * piece, LargestPiece))
    {
        int const limit = static_cast<int>(std::min<CountLeft>(piece, countLeft));
        int const aLength = LengthUpTo(a, limit);
        int const bLength = LengthUpTo(b, limit);
        int const result = CompareUnits(a, aLength, b, bLength, sensitivity);
        // Where they are equal, both have the same length.
        if (result != 0 || aLength < piece)
            return result;
        a += piece;
        b += piece;
        countLeft -= piece;
    }
}

} // namespace

int StringFunctions::compare(TCodeUnit const *a, TCodeUnit const *b, CaseSensitivity sensitivity)
{
    return CompareZeroTerminated(a, b, std::numeric_limits<std::int64_t>::max(), sensitivity);
}

int StringFunctions::compareN(TCodeUnit const *a, TCodeUnit const *b, int count, CaseSensitivity sensitivity)
{
    return count < 0 ? compare(a, b, sensitivity) : CompareZeroTerminated(a, b, count, sensitivity);
}

int StringFunctions::compareN(TWideTwin const *a, TWideTwin const *b, int count, CaseSensitivity sensitivity)
{
    if (a == b)
        return 0;
    if (count < 0)
        return compare(a, b, sensitivity);
    TwinText const first(a, LengthUpTo(a, count));
    TwinText const second(b, LengthUpTo(b, count));
    return CompareUnits(first.units(), first.length(), second.units(), second.length(), sensitivity);
}

int TStringCore::compare(Text const &other, CaseSensitivity sensitivity) const noexcept
{
    return CompareUnits(constData(), length(), other.units(), other.length(), sensitivity);
}

bool TStringCore::startsWith(Text const &text, CaseSensitivity sensitivity) const noexcept
{
    int const count = text.length();
    return count <= length() && CompareUnits(constData(), count, text.units(), count, sensitivity) == 0;
}

bool TStringCore::endsWith(Text const &text, CaseSensitivity sensitivity) const noexcept
{
    int const count = text.length();
    return count <= length() && CompareUnits(cend() - count, count, text.units(), count, sensitivity) == 0;
}

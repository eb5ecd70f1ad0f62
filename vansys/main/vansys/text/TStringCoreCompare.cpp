// Comparison of text by code unit, with and without regard to case.

#include "vansys/TStringCore.h"

#include "main/vansys/text/CaseFolding.h"

#include <algorithm>
#include <limits>
#include <type_traits>

using vansys::StringFunctions;
using namespace vansys::detail;

namespace
{

template <class Way>
int CompareBy(TCodeUnit const *a, int aLength, TCodeUnit const *b, int bLength) noexcept
{
    int const common = std::min(aLength, bLength);
    int const i = a == b ? common : FirstDifference<Way>(a, b, common);
    if (i < common)
        return Way::Key(a[i]) < Way::Key(b[i]) ? -1 : 1;
    return (aLength > bLength) - (aLength < bLength);
}

int CompareUnits(TCodeUnit const *a, int aLength, TCodeUnit const *b, int bLength,
                 StringFunctions::CaseSensitivity sensitivity) noexcept
{
    return sensitivity == StringFunctions::CaseInsensitive ? CompareBy<WithoutCase>(a, aLength, b, bLength)
                                                           : CompareBy<Exactly>(a, aLength, b, bLength);
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

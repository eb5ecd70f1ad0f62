// Searches for text, units and units of a set.

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/TextSearchVector.h"
#include "main/vansys/string/UnitSet.h"
#include "main/vansys/text/CaseFolding.h"
#include "vansys/TStringCore.h"

#include <algorithm>

using vansys::StringFunctions;
using namespace vansys::detail;

namespace
{

constexpr int NotFound = -1;

/// How the search without regard to case finds the places worth a closer look: among ASCII, by two units of
/// the needle, in both cases. Where there is anything else, all are.
template <int Bytes>
class FoldedCandidates
{
public:
    FoldedCandidates(TCodeUnit const *needle, int offset) noexcept
        : m_first(needle[0]),
          m_other(needle[offset]),
          m_offset(offset)
    {
    }

    std::uint32_t In(TCodeUnit const *places) const noexcept
    {
        UnitVector const first = LoadUnits(places);
        UnitVector const other = LoadUnits(places + m_offset);
        if (AreAscii(first | other))
            return LaneBits(m_first.Equals(first) & m_other.Equals(other));
        return AllLanes;
    }

private:
    static_assert(Bytes == BytesOfVector);

    /// Both cases of a unit, the same twice where it has but one in ASCII.
    class BothCases
    {
    public:
        explicit BothCases(TCodeUnit unit) noexcept
            : m_folded(Spread(FoldUnit(unit))),
              m_upper(m_folded ^ (AreBetween(m_folded, 'a', 'z') & AsciiCaseBit))
        {
        }

        UnitVector Equals(UnitVector units) const noexcept
        {
            return (units == m_folded) | (units == m_upper);
        }

    private:
        UnitVector m_folded;
        UnitVector m_upper;
    };

    BothCases m_first;
    BothCases m_other;
    int m_offset;
};

struct SearchWithoutCase : WithoutCase
{
    template <int Bytes>
    using Candidates = FoldedCandidates<Bytes>;

    template <Direction direction>
    static TCodeUnit const *FindTwoWay(TCodeUnit const *text, TCodeUnit const *end, TCodeUnit const *needle,
                                       int needleLength) noexcept
    {
        using Text = DirectedText<direction>;
        return TwoWaySearch<direction, WithoutCase>(Text(needle, needle + needleLength))
            .Find(Text(text, end));
    }
};

/// In a part of a text, in which the needle, which is not empty, has room.
template <Direction direction>
int FindIn(RawText text, int from, int to, RawText needle,
           StringFunctions::CaseSensitivity sensitivity) noexcept
{
    TCodeUnit const *const begin = text.units + from;
    TCodeUnit const *const end = text.units + to;
    auto const find = [&]() -> TCodeUnit const *
    {
        if (sensitivity == StringFunctions::CaseInsensitive)
            return FindByVector<direction, SearchWithoutCase, BytesOfVector>(begin, end, needle.units,
                                                                             needle.length);
        TextSearches const &searches = OwnTextSearches();
        if (direction == Direction::Backwards)
            return searches.findLast(begin, end, needle.units, needle.length);
        if (needle.length == 1)
            return searches.findUnit(begin, end, *needle.units);
        return searches.findFirst(begin, end, needle.units, needle.length);
    };
    TCodeUnit const *const match = find();
    return match ? static_cast<int>(match - text.units) : NotFound;
}

int FindForwards(RawText text, RawText needle, int start,
                 StringFunctions::CaseSensitivity sensitivity) noexcept
{
    int const from = std::max(start, 0);
    if (from > text.length || needle.length > text.length - from)
        return NotFound;
    if (needle.length == 0)
        return from;
    return FindIn<Direction::Forwards>(text, from, text.length, needle, sensitivity);
}

int FindBackwards(RawText text, RawText needle, int start,
                  StringFunctions::CaseSensitivity sensitivity) noexcept
{
    int const from = start < 0 ? text.length : start;
    if (needle.length == 0)
        return from <= text.length ? from : NotFound;
    if (needle.length > text.length)
        return NotFound;
    int const last = std::min(from, text.length - needle.length);
    return FindIn<Direction::Backwards>(text, 0, last + needle.length, needle, sensitivity);
}

/// The first element at or after `start` that is in the set, or that is not.
template <class Set>
int FindMemberFrom(RawText text, int start, Set const &set, bool isMember) noexcept
{
    int const from = std::max(start, 0);
    if (from >= text.length)
        return NotFound;
    TCodeUnit const *const end = text.units + text.length;
    TCodeUnit const *const match = FindMember(text.units + from, end, set, isMember);
    return match == end ? NotFound : static_cast<int>(match - text.units);
}

int FindUnit(RawText text, RawText set, int start, bool isMember) noexcept
{
    return FindMemberFrom(text, start, UnitSet(set.units, set.length), isMember);
}

/// Finds an element of twin text, which is a unit where the twin is one.
int FindTwinElement(TwinText const &text, TwinText const &set, int start, bool isMember)
{
    constexpr bool AreCodePoints = sizeof(TWideTwin) != sizeof(TCodeUnit);
    return WithSet(set.units(), set.length(), AreCodePoints,
                   [&](auto const &members)
                   {
                       return text.position(FindMemberFrom(RawText(text.units(), text.length()),
                                                           text.unitPosition(start), members, isMember));
                   });
}

} // namespace

int StringFunctions::findStr(TCodeUnit const *text, int length, TCodeUnit const *needle, int needleLength,
                             int start, CaseSensitivity sensitivity)
{
    return FindForwards(RawText(text, length), RawText(needle, needleLength), start, sensitivity);
}

int StringFunctions::findStr(TWideTwin const *text, int length, TWideTwin const *needle, int needleLength,
                             int start, CaseSensitivity sensitivity)
{
    TwinText const twin(text, length), sought(needle, needleLength);
    return twin.position(findStr(twin.units(), twin.length(), sought.units(), sought.length(),
                                 twin.unitPosition(start), sensitivity));
}

int StringFunctions::findChar(TCodeUnit const *text, int length, TCodeUnit unit, int start,
                              CaseSensitivity sensitivity)
{
    return FindForwards(RawText(text, length), RawText(&unit, 1), start, sensitivity);
}

int StringFunctions::findOneOf(TCodeUnit const *text, int length, TCodeUnit const *set, int setLength,
                               int start)
{
    return FindUnit(RawText(text, length), RawText(set, setLength), start, true);
}

int StringFunctions::findOneNotOf(TCodeUnit const *text, int length, TCodeUnit const *set, int setLength,
                                  int start)
{
    return FindUnit(RawText(text, length), RawText(set, setLength), start, false);
}

int StringFunctions::findOneOf(TWideTwin const *text, int length, TWideTwin const *set, int setLength,
                               int start)
{
    return FindTwinElement(TwinText(text, length), TwinText(set, setLength), start, true);
}

int StringFunctions::findOneNotOf(TWideTwin const *text, int length, TWideTwin const *set, int setLength,
                                  int start)
{
    return FindTwinElement(TwinText(text, length), TwinText(set, setLength), start, false);
}

int TStringCore::indexOf(Text const &text, int start, CaseSensitivity sensitivity) const noexcept
{
    return FindForwards(*this, text, start, sensitivity);
}

int TStringCore::lastIndexOf(Text const &text, int start, CaseSensitivity sensitivity) const noexcept
{
    return FindBackwards(*this, text, start, sensitivity);
}

int TStringCore::count(Text const &text, CaseSensitivity sensitivity) const noexcept
{
    if (text.isEmpty())
        return 0;
    int matches = 0;
    for (int match = indexOf(text, 0, sensitivity); match != NotFound; ++matches)
        match = indexOf(text, match + text.length(), sensitivity);
    return matches;
}

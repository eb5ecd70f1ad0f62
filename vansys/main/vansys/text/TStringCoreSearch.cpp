// Searches for text, units and units of a set.

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/TextSearch.h"
#include "main/vansys/string/UnitSet.h"
#include "main/vansys/text/CaseFolding.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstring>

using vansys::StringFunctions;
using vansys::detail::RawText;
using vansys::detail::TwinText;
using vansys::detail::UnitSet;

namespace
{

constexpr int NotFound = -1;

/// Two ways to tell whether text matches: how a unit is represented, and whether all units of two texts
/// are the same.
struct Exactly
{
    static TCodeUnit representative(TCodeUnit unit) noexcept { return unit; }

    static bool areSame(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
    {
        return std::memcmp(a, b, static_cast<std::size_t>(count) * sizeof *a) == 0;
    }
};

struct WithoutCase
{
    static TCodeUnit representative(TCodeUnit unit) noexcept { return vansys::detail::FoldUnit(unit); }

    static bool areSame(TCodeUnit const *a, TCodeUnit const *b, int count) noexcept
    {
        return std::equal(a, a + count, b,
                          [](TCodeUnit x, TCodeUnit y)
                          { return x == y || representative(x) == representative(y); });
    }
};

/// The first place where the needle begins, of those from `from` up to `to`, which is no longer one of them,
/// in steps of 1 or -1. The needle is not empty.
template <class Match>
int findByStep(TCodeUnit const *text, int from, int to, int step, RawText needle) noexcept
{
    TCodeUnit const first = Match::representative(*needle.units);
    for (int place = from; place != to; place += step)
    {
        if (Match::representative(text[place]) == first &&
            Match::areSame(text + place, needle.units, needle.length))
            return place;
    }
    return NotFound;
}

int findForwards(RawText text, RawText needle, int start,
                 StringFunctions::CaseSensitivity sensitivity) noexcept
{
    int const from = std::max(start, 0);
    if (from > text.length || needle.length > text.length - from)
        return NotFound;
    if (needle.length == 0)
        return from;
    if (sensitivity == StringFunctions::CaseInsensitive)
        return findByStep<WithoutCase>(text.units, from, text.length - needle.length + 1, 1, needle);
    vansys::detail::TextSearches const &searches = vansys::detail::OwnTextSearches();
    TCodeUnit const *const begin = text.units + from;
    TCodeUnit const *const end = text.units + text.length;
    TCodeUnit const *const match = needle.length == 1
                                       ? searches.findUnit(begin, end, *needle.units)
                                       : searches.findText(begin, end, needle.units, needle.length);
    return match ? static_cast<int>(match - text.units) : NotFound;
}

int findBackwards(RawText text, RawText needle, int start,
                  StringFunctions::CaseSensitivity sensitivity) noexcept
{
    int const from = start < 0 ? text.length : start;
    if (needle.length == 0)
        return from <= text.length ? from : NotFound;
    if (needle.length > text.length)
        return NotFound;
    int const last = std::min(from, text.length - needle.length);
    return sensitivity == StringFunctions::CaseInsensitive
               ? findByStep<WithoutCase>(text.units, last, -1, -1, needle)
               : findByStep<Exactly>(text.units, last, -1, -1, needle);
}

/// The first element at or after `start` that is in the set, or that is not.
template <class Set>
int FindMemberFrom(RawText text, int start, Set const &set, bool isMember) noexcept
{
    int const from = std::max(start, 0);
    if (from >= text.length)
        return NotFound;
    TCodeUnit const *const end = text.units + text.length;
    TCodeUnit const *const match = vansys::detail::FindMember(text.units + from, end, set, isMember);
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
    return vansys::detail::WithSet(set.units(), set.length(), AreCodePoints,
                                   [&](auto const &members)
                                   {
                                       return text.position(
                                           FindMemberFrom(RawText(text.units(), text.length()),
                                                          text.unitPosition(start), members, isMember));
                                   });
}

} // namespace

int StringFunctions::findStr(TCodeUnit const *text, int length, TCodeUnit const *needle, int needleLength,
                             int start, CaseSensitivity sensitivity)
{
    return findForwards(RawText(text, length), RawText(needle, needleLength), start, sensitivity);
}

int StringFunctions::findChar(TCodeUnit const *text, int length, TCodeUnit unit, int start,
                              CaseSensitivity sensitivity)
{
    return findForwards(RawText(text, length), RawText(&unit, 1), start, sensitivity);
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
    return findForwards(*this, text, start, sensitivity);
}

int TStringCore::lastIndexOf(Text const &text, int start, CaseSensitivity sensitivity) const noexcept
{
    return findBackwards(*this, text, start, sensitivity);
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

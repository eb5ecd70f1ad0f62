// Parts of the text, as new strings, and the ends of it.

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/ShortList.h"
#include "main/vansys/string/UnitSet.h"
#include "vansys/TCType.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstdint>

using vansys::StringFunctions;
using vansys::detail::CopyUnits;
using vansys::detail::FindMember;
using vansys::detail::RawText;
using vansys::detail::StringStorage;
using vansys::detail::TwinText;
using vansys::detail::WithSet;

namespace
{

struct Part
{
    int position;
    int length;

    int End() const noexcept { return position + length; }
};

constexpr Part NoPart = {-1, 0};

using Parts = vansys::detail::ShortList<Part, 128>;

/// Cuts text at what `find(from)` finds from there on.
template <class Find>
void Gather(Parts &parts, int length, StringFunctions::SplitBehavior behavior, Find find)
{
    for (int from = 0;;)
    {
        Part const separator = find(from);
        bool const isLast = separator.position < 0;
        Part const part{from, (isLast ? length : separator.position) - from};
        if (part.length > 0 || behavior == StringFunctions::KeepEmptyParts)
            parts.Append(part);
        if (isLast)
            return;
        from = separator.End();
    }
}

void GatherParts(Parts &parts, RawText text, RawText separator, StringFunctions::SplitBehavior behavior,
                 StringFunctions::CaseSensitivity sensitivity)
{
    if (!text.units || separator.length == 0)
        return;
    Gather(parts, text.length, behavior,
           [&](int from)
           {
               int const match = StringFunctions::findStr(text.units, text.length, separator.units,
                                                          separator.length, from, sensitivity);
               return Part{match, separator.length};
           });
}

/// The first element at or after `from` that is in the set, or that is not.
template <class Set>
Part FindElement(RawText text, int from, Set const &set, bool isMember)
{
    if (from >= text.length)
        return NoPart;
    TCodeUnit const *const end = text.units + text.length;
    TCodeUnit const *const match = FindMember(text.units + from, end, set, isMember);
    return match == end ? NoPart : Part{static_cast<int>(match - text.units), set.LengthAt(match, end)};
}

void GatherPartsOnAny(Parts &parts, RawText text, RawText set, bool areCodePoints,
                      StringFunctions::SplitBehavior behavior)
{
    if (!text.units || set.length == 0)
        return;
    WithSet(set.units, set.length, areCodePoints,
            [&](auto const &separators)
            {
                Gather(parts, text.length, behavior,
                       [&](int from) { return FindElement(text, from, separators, true); });
            });
}

/// What `cut(part)` makes of each part.
template <class Cut>
std::vector<TStringCore> CopyParts(Parts const &parts, Cut cut)
{
    std::vector<TStringCore> result;
    result.reserve(parts.size());
    for (Part const &part : parts)
        result.push_back(cut(part));
    return result;
}

std::vector<TStringCore> CopyParts(Parts const &parts, TCodeUnit const *text)
{
    return CopyParts(parts, [=](Part part) { return TStringCore(text + part.position, part.length); });
}

/// The part of the text that is asked for, or an empty one.
Part SectionOf(RawText text, RawText separator, int first, int last, StringFunctions::SectionFlags flags)
{
    Parts sections;
    GatherParts(sections, text, separator,
                flags & StringFunctions::SectionSkipEmpty ? StringFunctions::SkipEmptyParts
                                                          : StringFunctions::KeepEmptyParts,
                flags & StringFunctions::SectionCaseInsensitiveSeps ? StringFunctions::CaseInsensitive
                                                                    : StringFunctions::CaseSensitive);
    auto const count = static_cast<std::int64_t>(sections.size()); // up to one more than units
    std::int64_t const firstIndex = first < 0 ? first + count : first;
    std::int64_t const lastIndex = last < 0 ? last + count : last;
    if (firstIndex < 0 || lastIndex >= count || lastIndex < firstIndex)
        return {0, 0};
    int from = sections[static_cast<std::size_t>(firstIndex)].position;
    int to = sections[static_cast<std::size_t>(lastIndex)].End();
    if (flags & StringFunctions::SectionIncludeLeadingSep && from >= separator.length)
        from -= separator.length;
    if (flags & StringFunctions::SectionIncludeTrailingSep && separator.length <= text.length - to)
        to += separator.length;
    return {from, to - from};
}

enum End
{
    LeftEnd = 1,
    RightEnd = 2,
    BothEnds = LeftEnd | RightEnd,
};

/// What is left of the text without the elements of the set at the ends.
template <class Set>
Part TrimElements(RawText text, End ends, Set const &set)
{
    TCodeUnit const *begin = text.units;
    TCodeUnit const *end = begin + text.length;
    while (ends & RightEnd && end != begin)
    {
        int const length = set.LengthBefore(end, begin);
        if (!set.Contains(end - length, length))
            break;
        end -= length;
    }
    if (ends & LeftEnd)
        begin = FindMember(begin, end, set, false);
    return {static_cast<int>(begin - text.units), static_cast<int>(end - begin)};
}

/// White space as a set of units.
struct SpaceSet
{
    static bool Contains(TCodeUnit const *unit, int) noexcept { return TCType::isSpace(*unit); }
    static constexpr int LengthAt(TCodeUnit const *, TCodeUnit const *) noexcept { return 1; }
    static constexpr int LengthBefore(TCodeUnit const *, TCodeUnit const *) noexcept { return 1; }
};

Part TrimSpace(RawText text, End ends)
{
    return TrimElements(text, ends, SpaceSet());
}

Part TrimSet(RawText text, End ends, TStringCore::Text const &set)
{
    return WithSet(set, [&](auto const &members) { return TrimElements(text, ends, members); });
}

/// The elements at the beginning that are in the set, or that are not.
Part Span(RawText text, TStringCore::Text const &set, bool isMember)
{
    TCodeUnit const *const end = text.units + text.length;
    return WithSet(
        set,
        [&](auto const &members) {
            return Part{0, static_cast<int>(FindMember(text.units, end, members, !isMember) - text.units)};
        });
}

/// Only the first of the two can fail: the string shares nothing after it.
TStringCore &Keep(TStringCore &text, Part part)
{
    text.truncate(part.End());
    return text.removeAt(0, part.position);
}

} // namespace

// Substrings

TStringCore TStringCore::left(int count) const
{
    return mid(0, count);
}

TStringCore TStringCore::right(int count) const
{
    return count < 0 ? *this : mid(length() - std::min(count, length()));
}

TStringCore TStringCore::mid(int position, int count) const
{
    int const begin = std::clamp(position, 0, length());
    int const rest = length() - begin;
    int const taken = count < 0 ? rest : std::min(count, rest);
    return taken == length() ? *this : TStringCore(constData() + begin, taken);
}

TStringCore TStringCore::spanIncluding(Text const &set) const
{
    return left(Span(*this, set, true).length);
}

TStringCore TStringCore::spanExcluding(Text const &set) const
{
    return left(Span(*this, set, false).length);
}

TStringCore StringFunctions::section(TCodeUnit const *text, int length, TCodeUnit const *separator,
                                     int separatorLength, int first, int last, SectionFlags flags)
{
    Part const part =
        SectionOf(RawText(text, length), RawText(separator, separatorLength), first, last, flags);
    return part.length > 0 ? TStringCore(text + part.position, part.length) : TStringCore();
}

TStringCore StringFunctions::section(TWideTwin const *text, int length, TWideTwin const *separator,
                                     int separatorLength, int first, int last, SectionFlags flags)
{
    TwinText const twin(text, length);
    TwinText const sought(separator, separatorLength);
    return section(twin.units(), twin.length(), sought.units(), sought.length(), first, last, flags);
}

TStringCore TStringCore::section(Text const &separator, int first, int last, SectionFlags flags) const
{
    Part const part = SectionOf(*this, separator, first, last, flags);
    return mid(part.position, part.length);
}

TStringCore TStringCore::tokenize(Text const &separators, int &position, SplitBehavior behavior) const
{
    if (separators.isNull() || position < 0)
        return TStringCore();
    return WithSet(separators,
                   [&](auto const &set)
                   {
                       int const start = behavior == SkipEmptyParts
                                             ? FindElement(*this, position, set, false).position
                                             : position;
                       if (start < 0)
                       {
                           position = -1;
                           return TStringCore();
                       }
                       Part const separator = FindElement(*this, start, set, true);
                       bool const isLast = separator.position < 0;
                       TStringCore token = mid(start, isLast ? -1 : separator.position - start);
                       position = isLast ? -1 : separator.End();
                       return token;
                   });
}

// Splitting and joining

std::vector<TStringCore> StringFunctions::split(TCodeUnit const *text, int length, TCodeUnit const *separator,
                                                int separatorLength, SplitBehavior behavior,
                                                CaseSensitivity sensitivity)
{
    Parts parts;
    GatherParts(parts, RawText(text, length), RawText(separator, separatorLength), behavior, sensitivity);
    return CopyParts(parts, text);
}

std::vector<TStringCore> StringFunctions::split(TWideTwin const *text, int length, TWideTwin const *separator,
                                                int separatorLength, SplitBehavior behavior,
                                                CaseSensitivity sensitivity)
{
    TwinText const twin(text, length);
    TwinText const sought(separator, separatorLength);
    return split(twin.units(), twin.length(), sought.units(), sought.length(), behavior, sensitivity);
}

std::vector<TStringCore> TStringCore::split(Text const &separator, SplitBehavior behavior,
                                            CaseSensitivity sensitivity) const
{
    Parts parts;
    GatherParts(parts, *this, separator, behavior, sensitivity);
    return CopyParts(parts, [this](Part part) { return mid(part.position, part.length); });
}

std::vector<TStringCore> StringFunctions::splitOnAny(TCodeUnit const *text, int length, TCodeUnit const *set,
                                                     int setLength, SplitBehavior behavior)
{
    Parts parts;
    GatherPartsOnAny(parts, RawText(text, length), RawText(set, setLength), false, behavior);
    return CopyParts(parts, text);
}

std::vector<TStringCore> StringFunctions::splitOnAny(TWideTwin const *text, int length, TWideTwin const *set,
                                                     int setLength, SplitBehavior behavior)
{
    TwinText const twin(text, length);
    TwinText const members(set, setLength);
    Parts parts;
    GatherPartsOnAny(parts, RawText(twin.units(), twin.length()), RawText(members.units(), members.length()),
                     sizeof(TWideTwin) != sizeof(TCodeUnit), behavior);
    return CopyParts(parts, twin.units());
}

std::vector<TStringCore> TStringCore::splitOnAny(Text const &set, SplitBehavior behavior) const
{
    Parts parts;
    GatherPartsOnAny(parts, *this, set, set.isCodePoints(), behavior);
    return CopyParts(parts, [this](Part part) { return mid(part.position, part.length); });
}

TStringCore TStringCore::join(std::vector<TStringCore> const &parts, Text const &separator)
{
    if (parts.size() == 1)
        return parts.front();
    TStringCore result;
    if (parts.empty())
        return result;
    auto length = static_cast<std::int64_t>(parts.size() - 1) * separator.length();
    for (TStringCore const &part : parts)
        length += part.length();
    TCodeUnit *out = result.m_storage.setLengthForOverwrite(StringStorage::checkedLength(length));
    for (TStringCore const &part : parts)
    {
        if (&part != &parts.front())
        {
            CopyUnits(out, separator.units(), separator.length());
            out += separator.length();
        }
        CopyUnits(out, part.constData(), part.length());
        out += part.length();
    }
    return result;
}

// Padding

TStringCore TStringCore::leftJustified(int width, TCodeUnit fill, bool truncate) const
{
    int const wanted = std::max(width, 0);
    if (wanted <= length())
        return truncate ? left(wanted) : *this;
    TStringCore result;
    TCodeUnit *const out = result.m_storage.setLengthForOverwrite(wanted);
    CopyUnits(out, constData(), length());
    std::fill(out + length(), out + wanted, fill);
    return result;
}

TStringCore TStringCore::rightJustified(int width, TCodeUnit fill, bool truncate) const
{
    int const wanted = std::max(width, 0);
    if (wanted <= length())
        return truncate ? left(wanted) : *this;
    TStringCore result;
    TCodeUnit *const out = result.m_storage.setLengthForOverwrite(wanted);
    std::fill(out, out + wanted - length(), fill);
    CopyUnits(out + wanted - length(), constData(), length());
    return result;
}

// The ends

TStringCore &TStringCore::trim()
{
    return Keep(*this, TrimSpace(*this, BothEnds));
}

TStringCore &TStringCore::trimLeft()
{
    return Keep(*this, TrimSpace(*this, LeftEnd));
}

TStringCore &TStringCore::trimRight()
{
    return Keep(*this, TrimSpace(*this, RightEnd));
}

TStringCore &TStringCore::trim(Text const &set)
{
    return Keep(*this, TrimSet(*this, BothEnds, set));
}

TStringCore &TStringCore::trimLeft(Text const &set)
{
    return Keep(*this, TrimSet(*this, LeftEnd, set));
}

TStringCore &TStringCore::trimRight(Text const &set)
{
    return Keep(*this, TrimSet(*this, RightEnd, set));
}

TStringCore TStringCore::trimmed() const
{
    Part const part = TrimSpace(*this, BothEnds);
    return mid(part.position, part.length);
}

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
using vansys::detail::RawText;
using vansys::detail::StringStorage;
using vansys::detail::TwinText;
using vansys::detail::UnitSet;

namespace
{

struct Part
{
    int position;
    int length;

    int end() const noexcept { return position + length; }
};

using Parts = vansys::detail::ShortList<Part, 128>;

/// Cuts text at what `find(from)` finds from there on.
template <class Find>
void gather(Parts &parts, int length, StringFunctions::SplitBehavior behavior, int separatorLength, Find find)
{
    for (int from = 0;;)
    {
        int const match = find(from);
        Part const part{from, (match < 0 ? length : match) - from};
        if (part.length > 0 || behavior == StringFunctions::KeepEmptyParts)
            parts.append(part);
        if (match < 0)
            return;
        from = match + separatorLength;
    }
}

void gatherParts(Parts &parts, RawText text, RawText separator, StringFunctions::SplitBehavior behavior,
                 StringFunctions::CaseSensitivity sensitivity)
{
    if (!text.units || separator.length == 0)
        return;
    gather(parts, text.length, behavior, separator.length,
           [&](int from)
           {
               return StringFunctions::findStr(text.units, text.length, separator.units, separator.length,
                                               from, sensitivity);
           });
}

void gatherPartsOnAny(Parts &parts, RawText text, RawText set, StringFunctions::SplitBehavior behavior)
{
    if (!text.units || set.length == 0)
        return;
    UnitSet const separators(set.units, set.length);
    gather(parts, text.length, behavior, 1,
           [&](int from)
           {
               TCodeUnit const *const end = text.units + text.length;
               TCodeUnit const *const match = std::find_if(
                   text.units + from, end, [&](TCodeUnit unit) { return separators.contains(unit); });
               return match == end ? -1 : static_cast<int>(match - text.units);
           });
}

/// What `cut(part)` makes of each part.
template <class Cut>
std::vector<TStringCore> copyParts(Parts const &parts, Cut cut)
{
    std::vector<TStringCore> result;
    result.reserve(parts.size());
    for (Part const &part : parts)
        result.push_back(cut(part));
    return result;
}

std::vector<TStringCore> copyParts(Parts const &parts, TCodeUnit const *text)
{
    return copyParts(parts, [=](Part part) { return TStringCore(text + part.position, part.length); });
}

/// The part of the text that is asked for, or an empty one.
Part sectionOf(RawText text, RawText separator, int first, int last, StringFunctions::SectionFlags flags)
{
    Parts sections;
    gatherParts(sections, text, separator,
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
    int to = sections[static_cast<std::size_t>(lastIndex)].end();
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

/// What is left of the text without the units at the ends that `isTrimmed` is true for.
template <class IsTrimmed>
Part trimUnits(RawText text, End ends, IsTrimmed isTrimmed)
{
    int begin = 0;
    int end = text.length;
    while (ends & RightEnd && end > begin && isTrimmed(text.units[end - 1]))
        --end;
    while (ends & LeftEnd && begin < end && isTrimmed(text.units[begin]))
        ++begin;
    return {begin, end - begin};
}

Part trimSpace(RawText text, End ends)
{
    return trimUnits(text, ends, [](TCodeUnit unit) { return TCType::isSpace(unit); });
}

Part trimSet(RawText text, End ends, RawText set)
{
    UnitSet const members(set.units, set.length);
    return trimUnits(text, ends, [&](TCodeUnit unit) { return members.contains(unit); });
}

/// Only the first of the two can fail: the string shares nothing after it.
TStringCore &keep(TStringCore &text, Part part)
{
    text.truncate(part.end());
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

// A position of -1, for nothing found, is the count that means all of the text.

TStringCore TStringCore::spanIncluding(Text const &set) const
{
    return left(findOneNotOf(constData(), length(), set.units(), set.length()));
}

TStringCore TStringCore::spanExcluding(Text const &set) const
{
    return left(findOneOf(constData(), length(), set.units(), set.length()));
}

TStringCore StringFunctions::section(TCodeUnit const *text, int length, TCodeUnit const *separator,
                                     int separatorLength, int first, int last, SectionFlags flags)
{
    Part const part =
        sectionOf(RawText(text, length), RawText(separator, separatorLength), first, last, flags);
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
    Part const part = sectionOf(*this, separator, first, last, flags);
    return mid(part.position, part.length);
}

TStringCore TStringCore::tokenize(Text const &separators, int &position, SplitBehavior behavior) const
{
    if (separators.isNull() || position < 0)
        return TStringCore();
    int const start = behavior == SkipEmptyParts ? findOneNotOf(constData(), length(), separators.units(),
                                                                separators.length(), position)
                                                 : position;
    if (start < 0)
    {
        position = -1;
        return TStringCore();
    }
    int const end = findOneOf(constData(), length(), separators.units(), separators.length(), start);
    TStringCore token = mid(start, end < 0 ? -1 : end - start);
    position = end < 0 ? -1 : end + 1;
    return token;
}

// Splitting and joining

std::vector<TStringCore> StringFunctions::split(TCodeUnit const *text, int length, TCodeUnit const *separator,
                                                int separatorLength, SplitBehavior behavior,
                                                CaseSensitivity sensitivity)
{
    Parts parts;
    gatherParts(parts, RawText(text, length), RawText(separator, separatorLength), behavior, sensitivity);
    return copyParts(parts, text);
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
    gatherParts(parts, *this, separator, behavior, sensitivity);
    return copyParts(parts, [this](Part part) { return mid(part.position, part.length); });
}

std::vector<TStringCore> StringFunctions::splitOnAny(TCodeUnit const *text, int length, TCodeUnit const *set,
                                                     int setLength, SplitBehavior behavior)
{
    Parts parts;
    gatherPartsOnAny(parts, RawText(text, length), RawText(set, setLength), behavior);
    return copyParts(parts, text);
}

std::vector<TStringCore> StringFunctions::splitOnAny(TWideTwin const *text, int length, TWideTwin const *set,
                                                     int setLength, SplitBehavior behavior)
{
    TwinText const twin(text, length);
    TwinText const members(set, setLength);
    return splitOnAny(twin.units(), twin.length(), members.units(), members.length(), behavior);
}

std::vector<TStringCore> TStringCore::splitOnAny(Text const &set, SplitBehavior behavior) const
{
    Parts parts;
    gatherPartsOnAny(parts, *this, set, behavior);
    return copyParts(parts, [this](Part part) { return mid(part.position, part.length); });
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
    return keep(*this, trimSpace(*this, BothEnds));
}

TStringCore &TStringCore::trimLeft()
{
    return keep(*this, trimSpace(*this, LeftEnd));
}

TStringCore &TStringCore::trimRight()
{
    return keep(*this, trimSpace(*this, RightEnd));
}

TStringCore &TStringCore::trim(Text const &set)
{
    return keep(*this, trimSet(*this, BothEnds, set));
}

TStringCore &TStringCore::trimLeft(Text const &set)
{
    return keep(*this, trimSet(*this, LeftEnd, set));
}

TStringCore &TStringCore::trimRight(Text const &set)
{
    return keep(*this, trimSet(*this, RightEnd, set));
}

TStringCore TStringCore::trimmed() const
{
    Part const part = trimSpace(*this, BothEnds);
    return mid(part.position, part.length);
}

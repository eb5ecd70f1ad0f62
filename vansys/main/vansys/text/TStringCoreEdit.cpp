// Operations that change the text.

#include "main/vansys/string/RawText.h"
#include "main/vansys/string/ShortList.h"
#include "main/vansys/string/UnitSet.h"
#include "vansys/TStringCore.h"

#include <algorithm>
#include <functional>

using vansys::detail::CopyUnits;
using vansys::detail::FindMember;
using vansys::detail::MoveUnits;
using vansys::detail::StringStorage;
using vansys::detail::WithSet;

namespace
{

/// The units of an argument, copied where they are part of the string that is about to change.
class StableText
{
public:
    StableText(TStringCore::Text const &text, TStringCore const &changing) : m_length(text.length())
    {
        // std::less orders pointers into different objects too.
        std::less<TCodeUnit const *> const before;
        if (before(text.units(), changing.cbegin()) || before(changing.cend(), text.units()))
            m_units = text.units();
        else
        {
            m_copy.assign(text.units(), m_length);
            m_units = m_copy.constData();
        }
    }

    TCodeUnit const *Units() const noexcept { return m_units; }

    int Length() const noexcept { return m_length; }

    /// Writes the units. Returns how many there are.
    int CopyTo(TCodeUnit *out) const noexcept
    {
        CopyUnits(out, m_units, m_length);
        return m_length;
    }

private:
    TStringCore m_copy;
    TCodeUnit const *m_units;
    int m_length;
};

struct Replaced
{
    int matches;
    int length; ///< of the text afterwards
};

/// Replaces in place, from left to right, by text that is not longer: what is written never reaches what is
/// still to be searched. `next(from)` finds the next match.
template <class Next>
Replaced ReplaceAsFound(TCodeUnit *units, int length, int matchLength, StableText const &replacement,
                        int firstMatch, Next next)
{
    int matches = 0;
    int from = 0;
    int to = 0;
    for (int match = firstMatch; match >= 0; match = next(from), ++matches)
    {
        if (to != from)
            MoveUnits(units + to, units + from, match - from);
        to += match - from;
        to += replacement.CopyTo(units + to);
        from = match + matchLength;
    }
    if (to != from)
        MoveUnits(units + to, units + from, length - from);
    return {matches, to + length - from};
}

using Places = vansys::detail::ShortList<int, 256>;

/// Replaces the matches by longer text, from right to left, so that nothing is overwritten before it has been
/// moved. There is room for `newLength` units.
void ReplaceAt(Places const &places, TCodeUnit *units, int oldLength, int newLength, int matchLength,
               StableText const &replacement)
{
    int from = oldLength;
    int to = newLength;
    for (std::size_t i = places.size(); i-- > 0;)
    {
        int const behind = places[i] + matchLength;
        to -= from - behind;
        MoveUnits(units + to, units + behind, from - behind);
        to -= replacement.Length();
        replacement.CopyTo(units + to);
        from = places[i];
    }
}

/// Replaces each member of the set by at most one unit, in place. Returns the new length.
template <class Set>
int ReplaceMembers(TCodeUnit *units, int first, int length, Set const &set, TCodeUnit const *replacement)
{
    TCodeUnit const *const end = units + length;
    TCodeUnit *out = units + first;
    for (TCodeUnit const *next = out; next != end;)
    {
        int const count = set.LengthAt(next, end);
        bool const isMember = set.Contains(next, count);
        for (TCodeUnit const *const behind = next + count; next != behind; ++next)
        {
            if (!isMember)
                *out++ = *next;
        }
        if (isMember && replacement)
            *out++ = *replacement;
    }
    return static_cast<int>(out - units);
}

} // namespace

TStringCore &TStringCore::insert(int position, Text const &text)
{
    return replace(position, 0, text);
}

TStringCore &TStringCore::removeAt(int position, int count)
{
    return replace(position, count, nullptr);
}

TStringCore &TStringCore::replace(int position, int count, Text const &text)
{
    int const before = length();
    int const begin = std::clamp(position, 0, before);
    int const removed = count < 0 ? before - begin : std::min(count, before - begin);
    if (removed == 0 && text.isEmpty())
        return *this;
    StableText const added(text, *this);
    int const after = StringStorage::checkedLength(std::int64_t{before} - removed + added.Length());
    if (after > before)
        m_storage.setLength(after);
    TCodeUnit *const units = m_storage.writableUnits();
    MoveUnits(units + begin + added.Length(), units + begin + removed, before - begin - removed);
    added.CopyTo(units + begin);
    m_storage.shorten(after);
    return *this;
}

TStringCore &TStringCore::removeAll(Text const &text, CaseSensitivity sensitivity)
{
    return replace(text, nullptr, sensitivity);
}

int TStringCore::replaceCount(Text const &before, Text const &after, CaseSensitivity sensitivity)
{
    int const firstMatch = before.isEmpty() ? -1 : indexOf(before, 0, sensitivity);
    if (firstMatch < 0)
        return 0;
    StableText const old(before, *this);
    StableText const replacement(after, *this);
    auto const next = [&](int from)
    { return findStr(constData(), length(), old.Units(), old.Length(), from, sensitivity); };
    if (replacement.Length() <= old.Length())
    {
        Replaced const replaced =
            ReplaceAsFound(m_storage.writableUnits(), length(), old.Length(), replacement, firstMatch, next);
        m_storage.shorten(replaced.length);
        return replaced.matches;
    }

    Places places;
    for (int match = firstMatch; match >= 0; match = next(match + old.Length()))
        places.Append(match);
    auto const matches = static_cast<int>(places.size());
    int const oldLength = length();
    int const newLength = StringStorage::checkedLength(oldLength + std::int64_t{matches} *
                                                                       (replacement.Length() - old.Length()));
    m_storage.setLength(newLength);
    ReplaceAt(places, m_storage.writableUnits(), oldLength, newLength, old.Length(), replacement);
    return matches;
}

TStringCore &TStringCore::removeAnyOf(Text const &set, int start)
{
    return replaceMembers(set, nullptr, start);
}

TStringCore &TStringCore::replaceAnyOf(Text const &set, TCodeUnit unit, int start)
{
    return replaceMembers(set, &unit, start);
}

TStringCore &TStringCore::replaceMembers(Text const &set, TCodeUnit const *replacement, int start)
{
    StableText const stable(set, *this);
    WithSet(stable.Units(), stable.Length(), set.isCodePoints(),
            [&](auto const &members)
            {
                TCodeUnit const *const from = cbegin() + std::clamp(start, 0, length());
                auto const first = static_cast<int>(FindMember(from, cend(), members, true) - cbegin());
                if (first == length())
                    return;
                TCodeUnit *const units = m_storage.writableUnits();
                m_storage.shorten(ReplaceMembers(units, first, length(), members, replacement));
            });
    return *this;
}

void TStringCore::truncate(int length)
{
    // Only where something goes: a shared text would be detached.
    int const kept = std::max(length, 0);
    if (kept < this->length())
        m_storage.setLength(kept);
}

void TStringCore::truncateAtFirstNull()
{
    int const first = findChar(constData(), length(), 0);
    if (first >= 0)
        truncate(first);
}

void TStringCore::chop(int count)
{
    if (count > 0)
        truncate(std::max(length() - count, 0));
}

TStringCore &TStringCore::reverse()
{
    if (length() > 1)
        std::reverse(begin(), end());
    return *this;
}

TStringCore TStringCore::reversed() const
{
    TStringCore result = *this;
    result.reverse();
    return result;
}

TStringCore TStringCore::repeated(int times) const
{
    if (times == 1)
        return *this;
    TStringCore result;
    result.assignRepeated(constData(), length(), times);
    return result;
}
